// Code units into and out of ovrant_ustring, for tests that must see them.

#ifndef TESTS_PLATFORM_TEXT_UNITS_H_
#define TESTS_PLATFORM_TEXT_UNITS_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace stowra_test {

inline std::u16string UnitsOf(const ovrant::utils::ovrant_ustring& text) {
  return std::u16string(text.units());
}

// Any units, lone surrogates included.
inline ovrant::utils::ovrant_ustring TextOf(std::u16string_view units) {
  return ovrant::utils::ovrant_ustring(units);
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_TEXT_UNITS_H_
