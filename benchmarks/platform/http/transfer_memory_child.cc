// SPDX-License-Identifier: MIT
// Usage: transfer_memory_child URL LENGTH. Downloads once, into memory. The exit status is 0 when
// LENGTH bytes came.

#include <cstdlib>

#include "common_stowraapi/platform/internet_data.h"

int main(int argc, char** argv) {
  using ovrant::internet::InternetData;
  if (argc != 3) return EXIT_FAILURE;
  const unsigned long length = std::strtoul(argv[2], nullptr, 10);
  ovrant::internet::TransferDefaults defaults;
  defaults.body_cap = length;
  InternetData::SetDefaults(defaults);
  InternetData transport{ovrant::utils::ovrant_ustring(argv[1])};
  const bool good = transport.Download() && transport.received_data_length() == length;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
