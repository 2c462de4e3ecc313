// SPDX-License-Identifier: MIT
// Finds the message in a web page.

#ifndef HOST_HTML_TEXT_H_
#define HOST_HTML_TEXT_H_

#include <string>
#include <string_view>

namespace stowra {

// The title of an HTML or XML text. Without one, its first line of text outside scripts and styles.
// Empty without either. Knows the most common character references.
std::string HtmlMessage(std::string_view html);

}  // namespace stowra

#endif  // HOST_HTML_TEXT_H_
