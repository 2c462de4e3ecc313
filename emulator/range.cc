// SPDX-License-Identifier: MIT
#include "emulator/range.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <system_error>

#include "emulator/http_fields.h"

namespace stowra_emulator {
namespace {

constexpr std::string_view kUnit = "bytes=";

// A number that does not fit counts as the largest.
std::optional<std::uint64_t> ParsePosition(std::string_view digits) {
  std::uint64_t position = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, position);
  if (digits.empty() || stop != end || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) return std::numeric_limits<std::uint64_t>::max();
  return position;
}

ByteRange Part(std::uint64_t offset, std::uint64_t length) {
  const auto kind = length == 0 ? ByteRange::Kind::kUnsatisfiable : ByteRange::Kind::kPart;
  return {kind, offset, length};
}

}  // namespace

ByteRange ParseRange(std::string_view value, std::uint64_t size) {
  if (!EqualNames(value.substr(0, kUnit.size()), kUnit)) return ByteRange();
  value.remove_prefix(kUnit.size());
  const std::size_t dash = value.find('-');
  if (dash == std::string_view::npos) return ByteRange();
  const std::string_view first_text = value.substr(0, dash);
  const std::string_view last_text = value.substr(dash + 1);
  const auto first = ParsePosition(first_text);
  const auto last = ParsePosition(last_text);
  if (first_text.empty()) {
    if (!last) return ByteRange();
    const std::uint64_t length = std::min(*last, size);
    return Part(size - length, length);
  }
  if (!first || (!last && !last_text.empty()) || (last && *last < *first)) return ByteRange();
  if (*first >= size) return Part(*first, 0);
  return Part(*first, last ? std::min(*last - *first, size - *first - 1) + 1 : size - *first);
}

}  // namespace stowra_emulator
