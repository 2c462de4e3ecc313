// SPDX-License-Identifier: MIT
// Numbers as snprintf writes them in the "C" locale.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_

#include <string>

#include "common_stowraapi/platform/format_argument.h"
#include "common_stowraapi/platform/text/conversion_spec.h"

namespace ovrant::utils {

// Columns of a width, and digits of a precision, that count. The format text may come from
// anywhere.
constexpr int kMaxFormatCount = 4096;

// For the conversions d i u o x X. REQUIRES: a number.
std::string FormatInteger(const ConversionSpec& spec, const FormatArgument& arg);

// For the conversions a A e E f F g G. REQUIRES: a number.
std::string FormatFloating(const ConversionSpec& spec, const FormatArgument& arg);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_FORMAT_H_
