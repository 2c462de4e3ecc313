// Reading decimal numbers, whatever the locale.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_

#include <string_view>

namespace ovrant::utils {

// The whole text must be one decimal number with an optional sign; ASCII white space around it is
// allowed. Anything else, or a number that does not fit, gives 0.

int ReadInt(std::u16string_view text);

// Digits with an optional point before, among or behind them and an optional exponent. Gives the
// nearest float.
float ReadFloat(std::u16string_view text);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_
