// SPDX-License-Identifier: MIT
#include "host/byte_size.h"

#include <fmt/format.h>

#include <limits>
#include <string_view>

#include "host/request_options.h"

namespace stowra {

std::string ReadByteSize(std::string& text) {
  constexpr std::string_view kUnits = "KkMmGgTt";
  constexpr unsigned long kMost = std::numeric_limits<unsigned long>::max();
  constexpr unsigned int kBitsPerUnit = 10;
  const std::size_t unit = text.empty() ? std::string_view::npos : kUnits.find(text.back());
  const bool has_unit = unit != std::string_view::npos;
  const auto shift = has_unit ? static_cast<unsigned int>(unit / 2 + 1) * kBitsPerUnit : 0U;
  const std::string number = has_unit ? text.substr(0, text.size() - 1) : text;
  if (!CheckWholeNumber(number, 1, kMost >> shift, "").empty()) {
    return fmt::format("'{}' is not a number of bytes above 0, such as 512K or 4G", text);
  }
  text = fmt::format("{}", std::stoul(number) << shift);
  return {};
}

}  // namespace stowra
