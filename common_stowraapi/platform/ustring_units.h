// The code units of a string, for the platform's own use.

#ifndef COMMON_STOWRAAPI_PLATFORM_USTRING_UNITS_H_
#define COMMON_STOWRAAPI_PLATFORM_USTRING_UNITS_H_

#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {

struct UstringUnits {
  // Valid until the string is next changed.
  static std::u16string_view Of(const ovrant_ustring& text) { return text.units_; }
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_USTRING_UNITS_H_
