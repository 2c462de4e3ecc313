// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/text/number_text.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "common_stowraapi/platform/text/classic_locale.h"

namespace ovrant::utils {
namespace {

bool IsSpace(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }
bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Removes the sign and the white space around `text`. True if the sign is a minus.
bool TrimAndTakeSign(std::u16string_view& text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  const bool negative = !text.empty() && text.front() == u'-';
  if (negative || (!text.empty() && text.front() == u'+')) text.remove_prefix(1);
  return negative;
}

std::size_t TakeDigits(std::u16string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && IsDigit(text[count])) ++count;
  text.remove_prefix(count);
  return count;
}

// Whether `text` is digits with an optional point and an optional exponent, and nothing else.
bool IsUnsignedDecimal(std::u16string_view text) {
  std::size_t digits = TakeDigits(text);
  if (!text.empty() && text.front() == u'.') {
    text.remove_prefix(1);
    digits += TakeDigits(text);
  }
  if (digits == 0) return false;
  if (text.empty()) return true;
  if (text.front() != u'e' && text.front() != u'E') return false;
  text.remove_prefix(1);
  if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) text.remove_prefix(1);
  return TakeDigits(text) > 0 && text.empty();
}

// 0 if the number does not fit a float. REQUIRES: IsUnsignedDecimal.
float NearestFloat(const std::string& decimal) {
  const ClassicLocale classic;
  const float value = std::strtof(decimal.c_str(), nullptr);
  return std::isfinite(value) ? value : 0;
}

}  // namespace

int ReadInt(std::u16string_view text) {
  const bool negative = TrimAndTakeSign(text);
  const std::int64_t limit = std::int64_t{std::numeric_limits<int>::max()} + (negative ? 1 : 0);
  std::int64_t value = 0;
  for (const char16_t unit : text) {
    if (!IsDigit(unit)) return 0;
    value = 10 * value + (unit - u'0');
    if (value > limit) return 0;
  }
  return static_cast<int>(negative ? -value : value);
}

float ReadFloat(std::u16string_view text) {
  const bool negative = TrimAndTakeSign(text);
  if (!IsUnsignedDecimal(text)) return 0;
  const float value = NearestFloat(std::string(text.begin(), text.end()));
  return negative ? -value : value;
}

}  // namespace ovrant::utils
