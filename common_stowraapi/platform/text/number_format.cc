#include "common_stowraapi/platform/text/number_format.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <new>

namespace ovrant::utils {
namespace {

using Kind = FormatArgument::Kind;

// Digits that a precision may ask for: the format text may come from anywhere.
constexpr int kMaxPrecision = 4096;

// An integer of `bytes` bytes, in two's complement if it is signed.
struct Integer {
  std::uint64_t bits;
  int bytes;
  bool is_signed;
};

// Cuts towards zero, and what does not fit to the nearest that does.
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
  if (arg.kind() == Kind::kUnsigned) return {arg.as_unsigned(), arg.size(), false};
  return {static_cast<std::uint64_t>(arg.as_signed()), arg.size(), true};
}

// The bits that count, as a number without a sign.
std::uint64_t Bits(const Integer& integer) {
  return integer.bits &
         (std::numeric_limits<std::uint64_t>::max() >> (64 - CHAR_BIT * integer.bytes));
}

bool IsNegative(const Integer& integer) {
  return integer.is_signed && (integer.bits >> (CHAR_BIT * integer.bytes - 1) & 1) != 0;
}

std::string SignOf(bool negative, const ConversionSpec& spec) {
  if (negative) return "-";
  if (spec.plus) return "+";
  return spec.space ? " " : "";
}

std::string Digits(std::uint64_t value, char16_t type) {
  const int base = type == u'o' ? 8 : type == u'x' || type == u'X' ? 16 : 10;
  char text[24];
  char* const end = std::to_chars(text, text + sizeof(text), value, base).ptr;
  std::string digits(text, end);
  if (type == u'X') {
    for (char& digit : digits) digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  }
  return digits;
}

// What the '#' flag shows: a leading zero of an octal number, "0x" of a hexadecimal one but 0.
void AddBaseMark(char16_t type, std::uint64_t magnitude, NumberText& number) {
  if (type == u'o' && (number.digits.empty() || number.digits[0] != '0')) {
    number.digits.insert(0, 1, '0');
  }
  if (magnitude == 0) return;
  if (type == u'x') number.prefix = "0x";
  if (type == u'X') number.prefix = "0X";
}

// What snprintf writes for a value without a sign. Its decimal point is the locale's, of one byte
// or more: all else is letters, digits and the exponent's sign.
std::string Print(const ConversionSpec& spec, double value) {
  std::string format = spec.alternate ? "%#.*" : "%.*";
  format += static_cast<char>(spec.type);
  char text[kMaxPrecision + std::numeric_limits<double>::max_exponent10 + 32];
  const int precision = std::min(spec.precision, kMaxPrecision);
  const int length = std::snprintf(text, sizeof(text), format.c_str(), precision, value);
  if (length < 0) throw std::bad_alloc();
  std::string printed;
  for (const char* at = text; at != text + length; ++at) {
    const bool is_plain = (*at >= '0' && *at <= '9') || (*at >= 'A' && *at <= 'Z') ||
                          (*at >= 'a' && *at <= 'z') || *at == '+' || *at == '-';
    if (is_plain) {
      printed += *at;
    } else if (printed.empty() || printed.back() != '.') {
      printed += '.';
    }
  }
  return printed;
}

}  // namespace

NumberText FormatInteger(const ConversionSpec& spec, const FormatArgument& arg) {
  const bool shows_sign = spec.type == u'd' || spec.type == u'i';
  Integer integer = IntegerOf(arg);
  if (spec.bytes != 0 && spec.bytes < integer.bytes) {
    integer = {integer.bits, spec.bytes, shows_sign};
  }
  const bool negative = shows_sign && IsNegative(integer);
  if (negative) integer.bits = 0 - integer.bits;
  const std::uint64_t magnitude = Bits(integer);

  NumberText number;
  if (shows_sign) number.prefix = SignOf(negative, spec);
  if (magnitude != 0 || spec.precision != 0) number.digits = Digits(magnitude, spec.type);
  const auto wanted = static_cast<std::size_t>(std::clamp(spec.precision, 0, kMaxPrecision));
  if (number.digits.size() < wanted) number.digits.insert(0, wanted - number.digits.size(), '0');
  if (spec.alternate) AddBaseMark(spec.type, magnitude, number);
  number.zero_padded = spec.zero && spec.precision == ConversionSpec::kNoPrecision;
  return number;
}

NumberText FormatFloating(const ConversionSpec& spec, const FormatArgument& arg) {
  const double value = arg.kind() == Kind::kDouble     ? arg.as_double()
                       : arg.kind() == Kind::kUnsigned ? static_cast<double>(arg.as_unsigned())
                                                       : static_cast<double>(arg.as_signed());
  NumberText number;
  number.prefix = SignOf(std::signbit(value), spec);
  number.digits = Print(spec, std::fabs(value));
  number.zero_padded = spec.zero && std::isfinite(value);
  const bool is_hex = spec.type == u'a' || spec.type == u'A';
  if (is_hex && std::isfinite(value)) {
    number.prefix += number.digits.substr(0, 2);
    number.digits.erase(0, 2);
  }
  return number;
}

}  // namespace ovrant::utils
