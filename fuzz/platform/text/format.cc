// SPDX-License-Identifier: MIT
#include "fuzz/platform/text/format.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "fuzz/platform/text/model.h"
#include "fuzz/support/check.h"

namespace stowra_fuzz {
namespace {

using ovrant::utils::ovrant_ustring;

// How a conversion is written, but for its letter.
struct Shape {
  std::string flags;
  int width = -1;      // none
  int precision = -1;  // none

  std::string Written() const {
    std::string written = "%" + flags;
    if (width >= 0) written += std::to_string(width);
    if (precision >= 0) written += '.' + std::to_string(precision);
    return written;
  }
};

Shape ReadShape(Input& input, const char* flags) {
  Shape shape;
  const unsigned int chosen = input.Byte();
  for (std::size_t i = 0; i < std::strlen(flags); ++i) {
    if ((chosen >> i & 1) != 0) shape.flags += flags[i];
  }
  if ((chosen & 64) != 0) shape.width = static_cast<int>(1 + input.Below(40));
  if ((chosen & 128) != 0) shape.precision = static_cast<int>(input.Below(24));
  return shape;
}

std::uint64_t ReadBits(Input& input) {
  std::uint64_t bits = 0;
  for (std::size_t size = input.Below(9); size > 0; --size) bits = bits << 8 | input.Byte();
  return (input.Byte() & 1) != 0 ? ~bits : bits;
}

template <typename Value>
void FormatAsPrinted(const std::string& format, Value value, ovrant_ustring& text,
                     std::u16string& units) {
  char printed[512];
  const int length = std::snprintf(printed, sizeof(printed), format.c_str(), value);
  FUZZ_CHECK(length >= 0 && static_cast<std::size_t>(length) < sizeof(printed));
  text.Format(format.c_str(), value);
  units = DecodeUtf8(printed);
}

std::u16string UnitsOf(const ovrant_ustring& text) {
  std::u16string units;
  for (unsigned long i = 0; i < text.length(); ++i) units += text.at(i);
  return units;
}

// The first units, without the first half of a pair at their end.
std::u16string Shortened(const std::u16string& units, int precision) {
  if (precision < 0 || static_cast<std::size_t>(precision) >= units.size()) return units;
  std::u16string kept = units.substr(0, static_cast<std::size_t>(precision));
  const bool ends_in_first = !kept.empty() && kept.back() >= 0xD800 && kept.back() <= 0xDBFF;
  const char16_t next = units[kept.size()];
  if (ends_in_first && next >= 0xDC00 && next <= 0xDFFF) kept.pop_back();
  return kept;
}

std::u16string ShortenedUtf8(const std::string& bytes, int precision) {
  if (precision < 0 || static_cast<std::size_t>(precision) > bytes.size()) return DecodeUtf8(bytes);
  bool is_cut = false;
  return DecodeUtf8(bytes.substr(0, static_cast<std::size_t>(precision)), &is_cut);
}

}  // namespace

void FormatNumber(Input& input, ovrant_ustring& text, std::u16string& units) {
  const Shape shape = ReadShape(input, "-+ #0");
  const std::string written = shape.Written();
  const std::size_t conversion = input.Below(16);
  const std::uint64_t bits = ReadBits(input);
  if (conversion < 2) {
    FormatAsPrinted(written + "di"[conversion], static_cast<int>(bits), text, units);
  } else if (conversion < 6) {
    FormatAsPrinted(written + "uoxX"[conversion - 2], static_cast<unsigned int>(bits), text, units);
  } else if (conversion == 6) {
    FormatAsPrinted(written + "lld", static_cast<long long>(bits), text, units);
  } else if (conversion == 7) {
    FormatAsPrinted(written + "llx", static_cast<unsigned long long>(bits), text, units);
  } else {
    // The number stays small enough for the buffer.
    double value = static_cast<double>(static_cast<std::int64_t>(bits));
    for (std::size_t i = input.Below(40); i > 0; --i) value /= 16;
    FormatAsPrinted(written + "aAeEfFgG"[conversion - 8], value, text, units);
  }
}

void FormatText(Input& input, const ovrant_ustring& argument, const std::u16string& argument_units,
                ovrant_ustring& text, std::u16string& units) {
  const Shape shape = ReadShape(input, "-");
  const bool left = !shape.flags.empty();
  const std::size_t width = shape.width < 0 ? 0 : static_cast<std::size_t>(shape.width);
  const ovrant_ustring format(("<" + shape.Written() + "s>").c_str());
  std::u16string shown;
  switch (input.Below(3)) {
    case 0: {
      shown = Shortened(argument_units, shape.precision);
      const ovrant_ustring copy(argument);  // `text` may be the same text
      text.Format(format, copy);
      break;
    }
    case 1: {
      const std::string bytes = std::string(input.Bytes(input.Byte())).c_str();
      shown = ShortenedUtf8(bytes, shape.precision);
      text.Format(format, bytes.c_str());
      break;
    }
    default: {
      const std::uint32_t code = static_cast<std::uint32_t>(input.Word()) << 5 | input.Byte();
      const wchar_t wide[] = {static_cast<wchar_t>(code == 0 ? 1 : code), L'x', 0};
      const std::vector<std::uint32_t> codes = {static_cast<std::uint32_t>(wide[0]), 'x'};
      const auto most = static_cast<std::size_t>(shape.precision < 0 ? 2 : shape.precision);
      shown = DecodeUtf32({codes.begin(), codes.begin() + static_cast<int>(most < 2 ? most : 2)});
      text.Format(format, static_cast<const wchar_t*>(wide));
      break;
    }
  }
  units = u"<" + Padded(shown, width, left) + u">";
}

// Checks what holds for any format. Only the format and the arguments decide the result. Text
// before the first conversion is copied. No result is longer than all columns in each unit would
// make it.
void FormatAnything(Input& input, const ovrant_ustring& argument, ovrant_ustring& text,
                    std::u16string& units) {
  constexpr std::size_t kLongestFormat = 24;
  constexpr std::size_t kMostColumns = 4096 + 400;
  const std::string_view bytes = input.Bytes(input.Below(kLongestFormat));
  const ovrant_ustring format(bytes.data(), bytes.size());
  const int number = static_cast<int>(ReadBits(input));
  const double real = number / 16.0;
  const ovrant_ustring copy(argument);
  ovrant_ustring again("what was there before");
  text.Format(format, number, real, "\xC3\xA9z", copy, L"w", 'c');
  again.Format(format, number, real, "\xC3\xA9z", copy, L"w", 'c');
  FUZZ_CHECK(text == again);
  units = UnitsOf(text);
  const std::u16string format_units = DecodeUtf8(bytes);
  FUZZ_CHECK(units.size() <=
             copy.length() * format_units.size() + kMostColumns * (format_units.size() / 2 + 1));
  if (format_units.find(u'%') == std::u16string::npos) FUZZ_CHECK(units == format_units);
  again.Format(format);
  const std::size_t literal = format_units.find(u'%');
  FUZZ_CHECK(UnitsOf(again).substr(0, literal) == format_units.substr(0, literal));
}

}  // namespace stowra_fuzz
