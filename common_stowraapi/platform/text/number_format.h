// Writing numbers as printf does, with "." as decimal point whatever the locale.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_

#include <string>

#include "common_stowraapi/platform/format_argument.h"
#include "common_stowraapi/platform/text/conversion_spec.h"

namespace ovrant::utils {

// The parts of a number in ASCII; the '0' flag pads between them.
struct NumberText {
  std::string prefix;  // sign and "0x"
  std::string digits;
  bool zero_padded = false;
};

// For the conversions d i u o x X. REQUIRES: a number.
NumberText FormatInteger(const ConversionSpec& spec, const FormatArgument& arg);

// For the conversions a A e E f F g G. REQUIRES: a number.
NumberText FormatFloating(const ConversionSpec& spec, const FormatArgument& arg);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_
