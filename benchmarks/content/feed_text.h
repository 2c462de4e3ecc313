// SPDX-License-Identifier: MIT
// Reads values from a feed's texts in std::string.

#ifndef BENCHMARKS_CONTENT_FEED_TEXT_H_
#define BENCHMARKS_CONTENT_FEED_TEXT_H_

#include <optional>
#include <string>
#include <string_view>

namespace stowra_bench {

// Removes XML white space from both ends.
void TrimInPlace(std::string& text);

// False, with `value` unchanged, if the text is not a decimal number that fits 32 bits.
bool ToInt(std::string_view text, int& value);

bool IsTrue(std::string_view text);

void RemoveSearchOperators(std::string& title);

// The value of the parameter "uq".
std::string_view FindAuthorId(std::string_view uri);

// The percent-decoded value of a parameter of the URL's query. It points into the URL, or into
// `decoded` if there was something to decode.
std::optional<std::string_view> FindParameter(std::string_view url, std::string_view name,
                                              std::string& decoded);

// The version of a rendition's model file, or 0 for any other rendition.
int QmfVersion(std::string_view rendition);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_FEED_TEXT_H_
