// SPDX-License-Identifier: MIT
// Converts text between Unicode encodings. A text may have any length and contain NUL.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace ovrant::utils {

// Each maximal ill-formed part becomes one U+FFFD.
std::u16string Utf8ToUtf16(std::string_view bytes);

// A lone surrogate becomes U+FFFD. The result of an ASCII text beyond kShortText has capacity for
// kUtf8Spare more bytes.
std::string Utf16ToUtf8(std::u16string_view units);

// Texts up to this many units or bytes are allocated once at most, at their size.
constexpr std::size_t kShortText = 512;

// Parsers pad the text that they read. A long one need not move for that.
constexpr std::size_t kUtf8Spare = 16;

// From UTF-32, or from UTF-16 where wchar_t has 16 bits. What is not a Unicode scalar value becomes
// U+FFFD.
std::u16string WideToUtf16(std::wstring_view wide);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_UTF_CONVERSION_H_
