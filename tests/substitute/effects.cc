// SPDX-License-Identifier: MIT
#include "tests/substitute/effects.h"

#include <cstdint>
#include <sstream>
#include <utility>

#include "tests/substitute/transport_watch.h"

const int stowra_substitute_platform_marker = 1;

namespace stowra_substitute {
namespace {

// Never destroyed: the library's own static destructors come after those of this file.
std::vector<std::string>& List() {
  static auto* const list = new std::vector<std::string>;
  return *list;
}

}  // namespace

void Record(std::string effect) {
  RecordWatchedTransport();
  List().push_back(std::move(effect));
}

std::vector<std::string> TakeEffects() {
  RecordWatchedTransport();
  return std::exchange(List(), {});
}

std::string AddressText(const void* address) {
  if (address == nullptr) return "null";
  std::ostringstream text;
  text << "0x" << std::hex << reinterpret_cast<std::uintptr_t>(address);
  return text.str();
}

}  // namespace stowra_substitute
