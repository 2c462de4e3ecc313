// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/text/number_format.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <new>

#include "common_stowraapi/platform/text/classic_locale.h"

namespace ovrant::utils {
namespace {

using Kind = FormatArgument::Kind;

// `value` has the type that `length` and `type` require.
template <typename Value>
std::string Print(const ConversionSpec& spec, const char* length, char16_t type, Value value) {
  std::string format = "%";
  if (spec.left) format += '-';
  if (spec.plus) format += '+';
  if (spec.space) format += ' ';
  if (spec.alternate) format += '#';
  if (spec.zero) format += '0';
  format += "*.*";
  format += length;
  format += static_cast<char>(type);
  char text[kMaxFormatCount + std::numeric_limits<double>::max_exponent10 + 32];
  const ClassicLocale classic;
  const int size =
      std::snprintf(text, sizeof(text), format.c_str(), std::min(spec.width, kMaxFormatCount),
                    std::min(spec.precision, kMaxFormatCount), value);
  if (size < 0) throw std::bad_alloc();
  return {text, static_cast<std::size_t>(size)};
}

struct Integer {
  std::uint64_t bits;  // in two's complement if it is signed
  int bytes;
  bool is_signed;
};

// A double is cut toward zero. One that does not fit gives the nearest integer that does.
Integer IntegerOf(double value) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::isnan(value)) return {0, 8, true};
  if (value >= 2 * kTwoTo63) return {std::numeric_limits<std::uint64_t>::max(), 8, false};
  if (value >= 0) return {static_cast<std::uint64_t>(value), 8, false};
  if (value < -kTwoTo63) return {std::uint64_t{1} << 63, 8, true};
  return {static_cast<std::uint64_t>(static_cast<std::int64_t>(value)), 8, true};
}

Integer IntegerOf(const FormatArgument& arg) {
  if (arg.kind() == Kind::kDouble) return IntegerOf(arg.as_double());
  const int bytes = std::max(arg.size(), static_cast<int>(sizeof(int)));
  if (arg.kind() == Kind::kUnsigned) return {arg.as_unsigned(), bytes, false};
  return {static_cast<std::uint64_t>(arg.as_signed()), bytes, true};
}

}  // namespace

std::string FormatInteger(const ConversionSpec& spec, const FormatArgument& arg) {
  const Integer integer = IntegerOf(arg);
  const bool shows_sign = spec.type == u'd' || spec.type == u'i';
  if (!shows_sign) {
    const int unused = 64 - CHAR_BIT * (spec.bytes != 0 ? spec.bytes : integer.bytes);
    return Print<unsigned long long>(spec, "ll", spec.type, integer.bits << unused >> unused);
  }
  if (spec.bytes != 0) {
    const char* const length = spec.bytes == 1 ? "hh" : "h";
    return Print(spec, length, u'd', static_cast<int>(integer.bits));
  }
  const auto number = static_cast<long long>(integer.bits);
  if (number >= 0 || integer.is_signed) return Print(spec, "ll", u'd', number);
  return Print<unsigned long long>(spec, "ll", u'u', integer.bits);
}

std::string FormatFloating(const ConversionSpec& spec, const FormatArgument& arg) {
  const double value = arg.kind() == Kind::kDouble     ? arg.as_double()
                       : arg.kind() == Kind::kUnsigned ? static_cast<double>(arg.as_unsigned())
                                                       : static_cast<double>(arg.as_signed());
  return Print(spec, "", spec.type, value);
}

}  // namespace ovrant::utils
