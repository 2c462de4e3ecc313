// SPDX-License-Identifier: MIT
// One conversion of a printf format, such as "%-8.3f".

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_CONVERSION_SPEC_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_CONVERSION_SPEC_H_

#include <cstddef>
#include <string_view>

#include "common_stowraapi/platform/format_argument.h"

namespace ovrant::utils {

// The arguments of one call of Format, taken one after the other.
class ArgumentList {
 public:
  ArgumentList(const FormatArgument* args, std::size_t count) : args_(args), left_(count) {}

  // Kind::kNone when there are no more.
  FormatArgument Take();

 private:
  const FormatArgument* args_;
  std::size_t left_;
};

struct ConversionSpec {
  static constexpr int kNoPrecision = -1;

  bool left = false;       // '-'
  bool plus = false;       // '+'
  bool space = false;      // ' '
  bool alternate = false;  // '#'
  bool zero = false;       // '0'
  int width = 0;
  int precision = kNoPrecision;
  int bytes = 0;             // 1 for "hh", 2 for "h", else 0 (the argument's own)
  char16_t type = 0;         // the conversion's letter, or 0 if the format ends before it
  bool fits = true;          // false if a '*' had no integer
  std::u16string_view text;  // the whole conversion, with the '%'
};

// Reads the conversion at the start of `format`. Takes an argument for each '*' in it.
// REQUIRES: `format` begins with '%'.
ConversionSpec ReadConversion(std::u16string_view format, ArgumentList& args);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_CONVERSION_SPEC_H_
