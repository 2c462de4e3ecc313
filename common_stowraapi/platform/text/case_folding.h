// Comparing texts without regard to letter case.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_CASE_FOLDING_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_CASE_FOLDING_H_

#include <string_view>

namespace ovrant::utils {

// Negative, zero or positive: compares the code units of the two texts in full case folding.
int CompareFolded(std::u16string_view a, std::u16string_view b);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_CASE_FOLDING_H_
