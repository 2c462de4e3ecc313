// SPDX-License-Identifier: MIT
#include "fuzz/json/json_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

namespace stowra_fuzz {
namespace {

constexpr int kMaxExponent = 308;
constexpr std::size_t kExactDigits = 16;    // a significand of so many has every digit counted
constexpr std::size_t kIntegerDigits = 19;  // an integer of so many is read without rounding
constexpr double kUlp = std::numeric_limits<double>::epsilon();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kMinNormal = std::numeric_limits<double>::min();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

struct Spelling {
  std::size_t integer_digits = 0;
  std::size_t fraction_digits = 0;
  long exponent = 0;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

Spelling Split(const std::string& number) {
  Spelling spelling;
  std::size_t at = number[0] == '-' ? 1 : 0;
  for (; at < number.size() && IsDigit(number[at]); ++at) ++spelling.integer_digits;
  if (at < number.size() && number[at] == '.') {
    for (++at; at < number.size() && IsDigit(number[at]); ++at) ++spelling.fraction_digits;
  }
  // Beyond what a long holds it gives the limit, which is as far away from all that counts.
  if (at < number.size()) spelling.exponent = std::strtol(number.c_str() + at + 1, nullptr, 10);
  return spelling;
}

// The parser multiplies in doubles: three roundings for a significand and its power of ten, two for
// each digit that no longer fits 64 bits.
double RoundingError(const Spelling& spelling, double value) {
  const std::size_t long_digits =
      spelling.integer_digits > kIntegerDigits ? spelling.integer_digits - kIntegerDigits : 0;
  const double relative = static_cast<double>(4 + long_digits) * kUlp;
  if (std::abs(value) >= kMinNormal) return std::abs(value) * relative;
  // 10^-617 and less counts as 0 before the digits are multiplied.
  return long_digits > 0 ? std::abs(value) + kSmallest : 2 * kSmallest;
}

}  // namespace

NumberText ReadNumber(const std::string& spelling) {
  const Spelling parts = Split(spelling);
  NumberText number;
  number.nearest = std::strtod(spelling.c_str(), nullptr);
  number.error = std::isinf(number.nearest) ? kMax * kUlp * kMaxExponent
                                            : RoundingError(parts, number.nearest);

  // An exponent that is too large for a 1 in the last place is refused, whatever the digits: 0e309
  // too. One that is not is taken, though the digits may lead to infinity: 10e308. Fraction digits
  // beyond those that count do not move the limit.
  const auto digits = static_cast<long>(parts.fraction_digits);
  const bool counted = parts.integer_digits + parts.fraction_digits <= kExactDigits;
  if (parts.exponent > kMaxExponent + digits) {
    number.verdict = NumberText::Verdict::kRefused;
  } else if (parts.exponent > kMaxExponent && !counted) {
    number.verdict = NumberText::Verdict::kEither;
  }

  // An integer part beyond the largest double is refused; at the limit rounding decides.
  const double integer_part =
      std::abs(std::strtod(spelling.substr(0, spelling.find_first_of(".eE")).c_str(), nullptr));
  if (std::isinf(integer_part)) {
    number.verdict = NumberText::Verdict::kRefused;
  } else if (integer_part > kMax * (1 - 1e-9)) {
    number.verdict = NumberText::Verdict::kEither;
  }
  return number;
}

}  // namespace stowra_fuzz
