// SPDX-License-Identifier: MIT
// Breaks long lines.

#ifndef HOST_WRAP_H_
#define HOST_WRAP_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace stowra {

// The terminal columns that `text` takes. Wide characters take two.
std::size_t ColumnsOf(std::string_view text);

// `text` in lines of at most `width` columns, and at least one line. Breaks at spaces, and inside a
// word that is too long. REQUIRES: `width` is at least 2.
std::vector<std::string> WrapText(std::string_view text, std::size_t width);

// Joins lines without indentation to one, up to an empty line or a colon.
std::string JoinParagraphs(std::string_view text);

// A help text whose lines have at most `width` columns. Indented lines go on at `column` if their
// description begins there, otherwise at their own indentation. Examples, which call stowra, go on
// after a backslash and break outside quotation marks only.
std::string WrapHelp(std::string_view help, std::size_t width, std::size_t column);

}  // namespace stowra

#endif  // HOST_WRAP_H_
