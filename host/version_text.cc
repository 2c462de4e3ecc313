// SPDX-License-Identifier: MIT
#include "host/version_text.h"

#include <fmt/format.h>

#include <string_view>

#include "common_stowraapi/version.h"

namespace stowra {

namespace {

// The word after `label` in the library's version text.
std::string_view Field(std::string_view text, std::string_view label) {
  const std::size_t at = text.find(label);
  if (at == std::string_view::npos) return "unknown";
  text.remove_prefix(at + label.size());
  return text.substr(0, text.find_first_of(" \n"));
}

}  // namespace

std::string VersionText() {
  const std::string_view text = reinterpret_cast<const char*>(CommonStowraapiVersionString);
  return fmt::format("stowra {}.{}.{} with {} {} ({})", COMMON_STOWRAAPI_VERSION_MAJOR,
                     COMMON_STOWRAAPI_VERSION_MINOR, COMMON_STOWRAAPI_VERSION_PATCH,
                     Field(text, "PROGRAM:"), CommonStowraapiVersionNumber,
                     Field(text, "PROJECT:"));
}

}  // namespace stowra
