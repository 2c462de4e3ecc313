// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/text/utf_conversion.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "common_stowraapi/platform/text/ascii_run.h"

namespace ovrant::utils {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

char16_t* AppendCharacter(UChar32 character, char16_t* to) {
  if (character > 0xFFFF) {
    *to++ = U16_LEAD(character);
    *to++ = U16_TRAIL(character);
  } else {
    *to++ = static_cast<char16_t>(character);
  }
  return to;
}

// Converts the character or ill-formed part at text[at], which is not ASCII. Moves `at` behind it
// and returns the end of the result.
char16_t* ConvertCharacter(std::string_view text, std::size_t& at, char16_t* to) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const std::uint8_t* const from = bytes + at;
  const std::size_t left = text.size() - at;
  const std::uint8_t lead = from[0];
  if (lead < 0xE0) {
    if (lead >= 0xC2 && left > 1 && U8_IS_TRAIL(from[1])) {
      at += 2;
      return AppendCharacter((lead & 0x1F) << 6 | (from[1] & 0x3F), to);
    }
  } else if (lead < 0xF0) {
    if (left > 2 && U8_IS_VALID_LEAD3_AND_T1(lead, from[1]) && U8_IS_TRAIL(from[2])) {
      at += 3;
      return AppendCharacter((lead & 0xF) << 12 | (from[1] & 0x3F) << 6 | (from[2] & 0x3F), to);
    }
  } else if (lead < 0xF5 && left > 3 && U8_IS_VALID_LEAD4_AND_T1(lead, from[1]) &&
             U8_IS_TRAIL(from[2]) && U8_IS_TRAIL(from[3])) {
    at += 4;
    return AppendCharacter(
        (lead & 0x7) << 18 | (from[1] & 0x3F) << 12 | (from[2] & 0x3F) << 6 | (from[3] & 0x3F), to);
  }
  U8_FWD_1(bytes, at, text.size());
  return AppendCharacter(kReplacement, to);
}

char* ConvertCharacter(std::u16string_view text, std::size_t& at, char* to) {
  UChar32 character = 0;
  U16_NEXT_OR_FFFD(text, at, text.size(), character);
  std::size_t length = 0;
  U8_APPEND_UNSAFE(to, length, character);
  return to + length;
}

// Converts in steps, on the stack. That is faster than filling a string before writing into it.
template <typename To, typename From>
std::basic_string<To> Convert(std::basic_string_view<From> text, std::size_t spare) {
  constexpr std::size_t kStep = 2048;
  constexpr std::size_t kGrowth = sizeof(To) == 1 ? 3 : 1;  // units written for each unit read
  std::basic_string<To> result;
  if (text.size() > kShortText) result.reserve(text.size() + spare);
  To buffer[kGrowth * (kStep + 3)];  // a step's last character may reach beyond it
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t stop = at + std::min(kStep, text.size() - at);
    To* to = buffer;
    while (at < stop) {
      const std::size_t run = ConvertAscii(text.data() + at, stop - at, to);
      at += run;
      to += run;
      while (at < stop && !IsAscii(text[at])) to = ConvertCharacter(text, at, to);
    }
    result.append(buffer, static_cast<std::size_t>(to - buffer));
  }
  return result;
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view bytes) { return Convert<char16_t>(bytes, 0); }

std::string Utf16ToUtf8(std::u16string_view units) { return Convert<char>(units, kUtf8Spare); }

std::u16string WideToUtf16(std::wstring_view wide) {
  std::u16string units;
  units.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size();) {
    UChar32 character = kReplacement;
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
      U16_NEXT_OR_FFFD(wide, i, wide.size(), character);
    } else {
      const auto value = static_cast<char32_t>(wide[i++]);
      if (value <= 0x10FFFF && !U_IS_SURROGATE(value)) character = static_cast<UChar32>(value);
    }
    char16_t buffer[2];
    units.append(buffer, AppendCharacter(character, buffer));
  }
  return units;
}

}  // namespace ovrant::utils
