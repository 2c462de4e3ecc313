// SPDX-License-Identifier: MIT
#include "emulator/content/model_file.h"

#include <cstddef>

#include "emulator/random_stream.h"

namespace stowra_emulator {

std::string MakeModelFile(const std::string& mid, const std::string& rtyp) {
  constexpr std::size_t kMinSize = 2048;
  constexpr std::size_t kMaxSize = 61440;
  RandomStream random(mid + "/" + rtyp);
  const std::size_t size = kMinSize + random.Pick(kMaxSize - kMinSize + 1);
  std::string bytes;
  bytes.reserve(size);
  for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);
  while (bytes.size() < size) bytes += static_cast<char>(random.Next() >> 56);
  return bytes;
}

}  // namespace stowra_emulator
