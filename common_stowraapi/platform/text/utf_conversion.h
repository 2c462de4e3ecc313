// Between the encodings of Unicode text. Texts may have any length and hold NUL.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace ovrant::utils {

// Each maximal ill-formed part becomes one U+FFFD.
std::u16string Utf8ToUtf16(std::string_view bytes);

// A lone surrogate becomes U+FFFD. The result for a text that is not short has capacity for
// kUtf8Spare bytes beyond its size.
std::string Utf16ToUtf8(std::u16string_view units);

// Units or bytes; the string for such a text is allocated at its size, if at all.
constexpr std::size_t kShortText = 512;

// Parsers that read in steps pad the text they are given: a long one need not move for that.
constexpr std::size_t kUtf8Spare = 16;

// From UTF-32, or from UTF-16 where wchar_t has 16 bits. A value that is no Unicode scalar value
// becomes U+FFFD.
std::u16string WideToUtf16(std::wstring_view wide);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_
