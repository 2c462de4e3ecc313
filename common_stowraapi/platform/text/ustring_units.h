// A string's code units, as ovrant_ustring::units() and assignment give them.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_USTRING_UNITS_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_USTRING_UNITS_H_

#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {

struct UstringUnits {
  // Valid until the string is next changed.
  static std::u16string_view Of(const ovrant_ustring& text) { return text.units(); }

  // Replaces the content. `units` may be a part of the string.
  static void Set(std::u16string_view units, ovrant_ustring& text) { text = units; }
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_USTRING_UNITS_H_
