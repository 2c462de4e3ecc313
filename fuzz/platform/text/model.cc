// SPDX-License-Identifier: MIT
#include "fuzz/platform/text/model.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace stowra_fuzz {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsFirst(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsSecond(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// What may follow a first byte: how many bytes (0 if it begins no character), and the range of the
// next one. All later ones are from 80 to BF.
struct Lead {
  int following = 0;
  unsigned int low = 0x80;
  unsigned int high = 0xBF;
};

Lead LeadOf(unsigned int byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
  return {};
}

void AppendCode(std::uint32_t code, std::u16string& units) {
  if (code >= 0x10000) {
    units += static_cast<char16_t>(0xD800 + (code - 0x10000) / 0x400);
    units += static_cast<char16_t>(0xDC00 + (code - 0x10000) % 0x400);
  } else {
    units += static_cast<char16_t>(code);
  }
}

bool IsSpace(char16_t unit) {
  return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\v' || unit == '\f' ||
         unit == '\r';
}

// The text without the white space around it. Nothing if it is not ASCII.
std::optional<std::string> TrimmedAscii(std::u16string_view units) {
  std::string text;
  for (const char16_t unit : units) {
    if (unit == 0 || unit > 0x7F) return std::nullopt;
    text += static_cast<char>(unit);
  }
  while (!text.empty() && IsSpace(static_cast<char16_t>(text.front()))) text.erase(0, 1);
  while (!text.empty() && IsSpace(static_cast<char16_t>(text.back()))) text.pop_back();
  return text;
}

std::size_t DigitsAt(const std::string& text, std::size_t at) {
  std::size_t count = 0;
  while (at + count < text.size() && text[at + count] >= '0' && text[at + count] <= '9') ++count;
  return count;
}

bool IsSign(const std::string& text, std::size_t at) {
  return at < text.size() && (text[at] == '+' || text[at] == '-');
}

bool IsDecimal(const std::string& text) {
  std::size_t at = IsSign(text, 0) ? 1 : 0;
  const std::size_t whole = DigitsAt(text, at);
  at += whole;
  std::size_t fraction = 0;
  if (at < text.size() && text[at] == '.') {
    fraction = DigitsAt(text, at + 1);
    at += 1 + fraction;
  }
  if (whole + fraction == 0) return false;
  if (at == text.size()) return true;
  if (text[at] != 'e' && text[at] != 'E') return false;
  at += IsSign(text, at + 1) ? 2 : 1;
  const std::size_t exponent = DigitsAt(text, at);
  return exponent > 0 && at + exponent == text.size();
}

// A capital letter that is 32 before its small one.
bool IsCapital(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) ||
         (unit >= 0x391 && unit <= 0x3A9 && unit != 0x3A2);
}

// What folding leaves as it is: small letters, and what has no case.
bool IsOfOneCase(char16_t unit) {
  return (unit <= 0xFF && unit != 0xB5) || unit == 0x307 || (unit >= 0x3B1 && unit <= 0x3C9) ||
         (unit >= 0x4E00 && unit <= 0x9FFF) || unit == 0xFFFD;
}

// The second half of a Deseret letter: forty capital letters, then forty small ones.
bool IsDeseret(char16_t second) { return second >= 0xDC00 && second <= 0xDC4F; }

}  // namespace

std::u16string DecodeUtf8(std::string_view bytes, bool* is_cut) {
  std::u16string units;
  std::size_t at = 0;
  if (is_cut != nullptr) *is_cut = false;
  while (at < bytes.size()) {
    const unsigned int first = static_cast<unsigned char>(bytes[at++]);
    if (first < 0x80) {
      units += static_cast<char16_t>(first);
      continue;
    }
    Lead lead = LeadOf(first);
    bool is_whole = lead.following > 0;
    std::uint32_t code = first & (0x3FU >> lead.following);
    for (; is_whole && lead.following > 0; --lead.following) {
      if (at == bytes.size() && is_cut != nullptr) {
        *is_cut = true;
        return units;
      }
      const unsigned int next = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
      is_whole = next >= lead.low && next <= lead.high;
      if (!is_whole) break;
      code = code * 64 + (next - 0x80);
      lead.low = 0x80;
      lead.high = 0xBF;
      ++at;
    }
    AppendCode(is_whole ? code : kReplacement, units);
  }
  return units;
}

std::string EncodeUtf8(std::u16string_view units) {
  std::string bytes;
  const auto append = [&bytes](std::uint32_t byte) { bytes += static_cast<char>(byte); };
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t code = units[i];
    if (IsFirst(code) && i + 1 < units.size() && IsSecond(units[i + 1])) {
      code = 0x10000 + (code - 0xD800) * 0x400 + (units[++i] - 0xDC00U);
    } else if (IsFirst(code) || IsSecond(code)) {
      code = kReplacement;
    }
    if (code < 0x80) {
      append(code);
    } else if (code < 0x800) {
      append(0xC0 + code / 64);
      append(0x80 + code % 64);
    } else if (code < 0x10000) {
      append(0xE0 + code / 4096);
      append(0x80 + code / 64 % 64);
      append(0x80 + code % 64);
    } else {
      append(0xF0 + code / 262144);
      append(0x80 + code / 4096 % 64);
      append(0x80 + code / 64 % 64);
      append(0x80 + code % 64);
    }
  }
  return bytes;
}

std::u16string DecodeUtf32(const std::vector<std::uint32_t>& codes) {
  std::u16string units;
  for (const std::uint32_t code : codes) {
    const bool is_character = code <= 0x10FFFF && !IsFirst(code) && !IsSecond(code);
    AppendCode(is_character ? code : kReplacement, units);
  }
  return units;
}

int CompareUnits(std::u16string_view a, std::u16string_view b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::optional<std::u16string> Folded(std::u16string_view units) {
  std::u16string folded;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (unit == 0xDF || unit == 0x1E9E) {  // sharp s, small and capital
      folded += u"ss";
    } else if (unit == 0x130) {  // capital i with a dot
      folded += u"i\u0307";
    } else if (unit == 0x17F) {  // long s
      folded += u's';
    } else if (unit == 0x3C2) {  // final sigma
      folded += u'\u03C3';
    } else if (unit == 0xFB03) {  // the ligature of f, f and i
      folded += u"ffi";
    } else if (unit == 0x212A) {  // Kelvin sign
      folded += u'k';
    } else if (IsCapital(unit)) {
      folded += static_cast<char16_t>(unit + 0x20);
    } else if (unit == 0xD801 && i + 1 < units.size() && IsDeseret(units[i + 1])) {
      const char16_t second = units[++i];
      folded += unit;
      folded += second < 0xDC28 ? static_cast<char16_t>(second + 0x28) : second;
    } else if (IsOfOneCase(unit)) {
      folded += unit;
    } else {
      return std::nullopt;
    }
  }
  return folded;
}

int ToInt(std::u16string_view units) {
  const std::string text = TrimmedAscii(units).value_or("");
  const std::size_t begin = IsSign(text, 0) ? 1 : 0;
  if (begin == text.size() || DigitsAt(text, begin) != text.size() - begin) return 0;
  double value = 0;  // exact far beyond 32 bits, and no more counts
  for (std::size_t i = begin; i < text.size(); ++i) value = value * 10 + (text[i] - '0');
  if (text[0] == '-') value = -value;
  return value >= -2147483648.0 && value <= 2147483647.0 ? static_cast<int>(value) : 0;
}

float ToFloat(std::u16string_view units) {
  const std::string text = TrimmedAscii(units).value_or("");
  if (!IsDecimal(text)) return 0;
  const float value = std::strtof(text.c_str(), nullptr);
  return std::isfinite(value) ? value : 0;
}

std::u16string Replaced(std::u16string_view text, std::u16string_view from,
                        std::u16string_view to) {
  std::u16string replaced;
  for (std::size_t i = 0; i < text.size();) {
    if (!from.empty() && text.substr(i, from.size()) == from) {
      replaced += to;
      i += from.size();
    } else {
      replaced += text[i++];
    }
  }
  return replaced;
}

std::vector<std::u16string> Split(std::u16string_view text, std::u16string_view delimiters) {
  std::vector<std::u16string> tokens(1);
  for (const char16_t unit : text) {
    if (std::count(delimiters.begin(), delimiters.end(), unit) > 0) {
      tokens.emplace_back();
    } else {
      tokens.back() += unit;
    }
  }
  return tokens;
}

std::u16string FileName(std::u16string_view path, bool with_extension) {
  std::u16string name(path.substr(path.rfind(u'/') + 1));
  const std::size_t dot = name.rfind(u'.');
  if (!with_extension && dot != std::u16string::npos && dot > 0) name.erase(dot);
  return name;
}

std::u16string Padded(std::u16string text, std::size_t width, bool left) {
  while (text.size() < width) text.insert(left ? text.size() : 0, 1, u' ');
  return text;
}

}  // namespace stowra_fuzz
