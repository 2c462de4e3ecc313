// Code units into and out of ovrant_ustring, for tests that must see them.

#ifndef TESTS_PLATFORM_TEXT_UNITS_H_
#define TESTS_PLATFORM_TEXT_UNITS_H_

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {

// How GoogleTest shows a string.
inline void PrintTo(const ovrant_ustring& text, std::ostream* out) {
  *out << '"' << text.utf8() << '"';
}

}  // namespace ovrant::utils

namespace stowra_test {

inline std::u16string UnitsOf(const ovrant::utils::ovrant_ustring& text) {
  std::u16string units;
  for (unsigned long i = 0; i < text.length(); ++i) units += text.at(i);
  return units;
}

// A string of any units, lone surrogates too.
inline ovrant::utils::ovrant_ustring TextOf(std::u16string_view units) {
  ovrant::utils::ovrant_ustring text(std::string(units.size(), ' ').c_str());
  for (std::size_t i = 0; i < units.size(); ++i) text[i] = units[i];
  return text;
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_TEXT_UNITS_H_
