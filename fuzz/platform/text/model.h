// SPDX-License-Identifier: MIT
// A second, plain implementation of the text operations, over code units.

#ifndef FUZZ_PLATFORM_TEXT_MODEL_H_
#define FUZZ_PLATFORM_TEXT_MODEL_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_fuzz {

// Reads UTF-8 (Unicode 3.9): one U+FFFD for each maximal ill-formed part. `is_cut`, unless null,
// becomes whether the bytes end inside a character, which is then left out.
std::u16string DecodeUtf8(std::string_view bytes, bool* is_cut = nullptr);

// U+FFFD for a surrogate that is alone.
std::string EncodeUtf8(std::u16string_view units);

// U+FFFD for what is no character.
std::u16string DecodeUtf32(const std::vector<std::uint32_t>& codes);

// Negative, zero or positive.
int CompareUnits(std::u16string_view a, std::u16string_view b);

// In full case folding. Empty if the model does not know how a unit folds.
std::optional<std::u16string> Folded(std::u16string_view units);

int ToInt(std::u16string_view units);
float ToFloat(std::u16string_view units);

std::u16string Replaced(std::u16string_view text, std::u16string_view from, std::u16string_view to);

std::vector<std::u16string> Split(std::u16string_view text, std::u16string_view delimiters);

std::u16string FileName(std::u16string_view path, bool with_extension);

// At least `width` units, with blanks before or behind.
std::u16string Padded(std::u16string text, std::size_t width, bool left);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_TEXT_MODEL_H_
