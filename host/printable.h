// SPDX-License-Identifier: MIT
// Makes texts safe to show.

#ifndef HOST_PRINTABLE_H_
#define HOST_PRINTABLE_H_

#include <string>
#include <string_view>

namespace stowra {

// `utf8` as well-formed UTF-8 on one line, for a terminal or a line of JSON. Texts from a server or
// the command line go through here before they are shown. A JSON text keeps its meaning.
//
// These characters are written as JSON escapes, such as \u001B:
//   - Controls, which a terminal would obey, and line breaks.
//   - Characters that change the direction of text.
//   - Characters without width. Variation selectors stay, since emoji need them.
std::string Printable(std::string_view utf8);

// The same without those characters.
std::string WithoutHidden(std::string_view utf8);

}  // namespace stowra

#endif  // HOST_PRINTABLE_H_
