// SPDX-License-Identifier: MIT
#include "host/printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

namespace {

struct Range {
  char16_t first;
  char16_t last;
};

constexpr Range kEscaped[] = {
    {0x0000, 0x001F},  // C0 controls
    {0x007F, 0x009F},  // delete, C1 controls
    {0x00AD, 0x00AD},  // soft hyphen
    {0x034F, 0x034F},  // combining grapheme joiner
    {0x061C, 0x061C},  // Arabic letter mark
    {0x115F, 0x1160},  // Hangul fillers
    {0x17B4, 0x17B5},  // Khmer inherent vowels
    {0x180B, 0x180F},  // Mongolian separators
    {0x200B, 0x200F},  // zero-width spaces and joiners, direction marks
    {0x2028, 0x202E},  // line and paragraph separators, embeddings and overrides
    {0x2060, 0x206F},  // word joiner, invisible operators, isolates
    {0x3164, 0x3164},  // Hangul filler
    {0xFEFF, 0xFEFF},  // byte order mark
    {0xFFA0, 0xFFA0},  // Hangul filler
    {0xFFF0, 0xFFFB},  // interlinear annotation
};

// Of U+E0000 to U+E03FF: language tags and the selectors of rare ideographs.
constexpr char16_t kTagSurrogate = 0xDB40;

bool IsEscaped(char16_t unit) {
  return std::any_of(std::begin(kEscaped), std::end(kEscaped), [unit](const Range& range) {
    return unit >= range.first && unit <= range.last;
  });
}

// Replaces each code unit that is escaped by what `replace` gives.
template <typename Replace>
std::string ReplaceEscaped(std::string_view utf8, const Replace& replace) {
  const ovrant_ustring text(utf8.data(), utf8.size());
  ovrant_ustring shown;
  bool in_tag = false;
  for (const char16_t unit : text.units()) {
    const bool begins_tag = unit == kTagSurrogate;
    if (in_tag || begins_tag || IsEscaped(unit)) {
      shown += replace(unit);
    } else {
      shown += std::u16string_view(&unit, 1);
    }
    in_tag = begins_tag;
  }
  return shown.utf8();
}

}  // namespace

std::string Printable(std::string_view utf8) {
  return ReplaceEscaped(
      utf8, [](char16_t unit) { return fmt::format("\\u{:04X}", static_cast<unsigned>(unit)); });
}

std::string WithoutHidden(std::string_view utf8) {
  return ReplaceEscaped(utf8, [](char16_t /*unit*/) { return std::string(); });
}

}  // namespace stowra
