// Reading the texts of a feed that are held as std::string.

#ifndef BENCHMARKS_CONTENT_FEED_TEXT_H_
#define BENCHMARKS_CONTENT_FEED_TEXT_H_

#include <optional>
#include <string>
#include <string_view>

namespace stowra_bench {

// Takes the white space of XML away from both ends.
void TrimInPlace(std::string& text);

// False, and `value` is unchanged, if the text is no decimal number of 32 bits.
bool ToInt(std::string_view text, int& value);

bool IsTrue(std::string_view text);

void RemoveSearchOperators(std::string& title);

// The value of the parameter "uq".
std::string_view FindAuthorId(std::string_view uri);

// The value of a parameter of the URL's query, percent-decoded; it lies in the URL or, where
// something had to be decoded, in `decoded`.
std::optional<std::string_view> FindParameter(std::string_view url, std::string_view name,
                                              std::string& decoded);

// The version of a rendition's model file; 0 for any other rendition.
int QmfVersion(std::string_view rendition);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_FEED_TEXT_H_
