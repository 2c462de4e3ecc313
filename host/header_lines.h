// SPDX-License-Identifier: MIT
// Reads the request headers that the user gives.

#ifndef HOST_HEADER_LINES_H_
#define HOST_HEADER_LINES_H_

#include <string>
#include <string_view>
#include <vector>

namespace stowra {

// An empty string if `line` is "Name: value" with a name that HTTP allows and without line breaks
// or other controls, except tabs in the value. Otherwise an error text without the value, which
// may be a secret.
std::string CheckHeaderLine(std::string_view line);

// Appends the header in `text` to `lines`. For "@FILE" appends one for each line of the file that
// is not empty, for "@-" those of standard input. Returns false with the reason in `why` if that
// cannot be read or a line is not good.
bool ReadHeaderLines(const std::string& text, std::vector<std::string>& lines, std::string& why);

}  // namespace stowra

#endif  // HOST_HEADER_LINES_H_
