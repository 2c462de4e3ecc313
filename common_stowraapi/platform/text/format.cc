#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/format_argument.h"
#include "common_stowraapi/platform/text/conversion_spec.h"
#include "common_stowraapi/platform/text/number_format.h"
#include "common_stowraapi/platform/text/utf_conversion.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {
namespace {

using Kind = FormatArgument::Kind;
using UnitsOf = std::u16string_view (*)(const ovrant_ustring& text);

// Columns that a width may ask for: the format text may come from anywhere.
constexpr int kMaxWidth = 4096;

bool IsOneOf(char16_t unit, std::u16string_view set) {
  return set.find(unit) != std::u16string_view::npos;
}

bool IsNumber(const FormatArgument& arg) {
  return arg.kind() == Kind::kSigned || arg.kind() == Kind::kUnsigned ||
         arg.kind() == Kind::kDouble;
}

// The length of a text that ends at its first NUL, or at the precision: nothing behind either is
// read.
template <typename Unit>
std::size_t TextLength(const Unit* text, int precision) {
  if (precision == ConversionSpec::kNoPrecision) return std::char_traits<Unit>::length(text);
  std::size_t length = 0;
  while (length < static_cast<std::size_t>(precision) && text[length] != 0) ++length;
  return length;
}

// `bytes` without the character at its end that was cut in two, if there is one.
std::string_view WithoutCutCharacter(std::string_view bytes) {
  const auto* from = reinterpret_cast<const std::uint8_t*>(bytes.data());
  auto length = static_cast<std::ptrdiff_t>(bytes.size());
  U8_TRUNCATE_IF_INCOMPLETE(from, 0, length);
  return bytes.substr(0, static_cast<std::size_t>(length));
}

class Formatter {
 public:
  Formatter(ArgumentList args, UnitsOf units_of) : args_(args), units_of_(units_of) {}

  std::u16string Format(std::u16string_view format) {
    while (!format.empty()) {
      const std::size_t literal = std::min(format.find(u'%'), format.size());
      result_ += format.substr(0, literal);
      format.remove_prefix(literal);
      if (format.empty()) break;
      const ConversionSpec spec = ReadConversion(format, args_);
      if (!Convert(spec)) result_ += spec.text;
      format.remove_prefix(spec.text.size());
    }
    return std::move(result_);
  }

 private:
  // False, and nothing appended, when there is no such conversion or its argument does not fit. An
  // argument is taken all the same, so that the next conversion gets its own.
  bool Convert(const ConversionSpec& spec) {
    if (spec.type == u'%') {
      result_ += u'%';
      return true;
    }
    if (!IsOneOf(spec.type, u"diuoxXaAeEfFgGcspn")) return false;
    const FormatArgument arg = args_.Take();
    if (!spec.fits) return false;
    if (spec.type == u'n') return true;
    if (spec.type == u's') return ConvertText(spec, arg);
    if (spec.type == u'c') return ConvertCharacter(spec, arg);
    if (spec.type == u'p') return ConvertPointer(spec, arg);
    if (!IsNumber(arg)) return false;
    AppendNumber(
        spec, IsOneOf(spec.type, u"diuoxX") ? FormatInteger(spec, arg) : FormatFloating(spec, arg));
    return true;
  }

  bool ConvertText(const ConversionSpec& spec, const FormatArgument& arg) {
    switch (arg.kind()) {
      case Kind::kUtf8:
        AppendUtf8(spec, static_cast<const char*>(arg.as_pointer()));
        return true;
      case Kind::kWide:
        AppendWide(spec, static_cast<const wchar_t*>(arg.as_pointer()));
        return true;
      case Kind::kString:
        AppendUnits(spec, units_of_(*static_cast<const ovrant_ustring*>(arg.as_pointer())));
        return true;
      default:
        return false;
    }
  }

  void AppendUtf8(const ConversionSpec& spec, const char* text) {
    if (text == nullptr) text = "";
    const std::string_view bytes(text, TextLength(text, spec.precision));
    const bool may_be_cut = bytes.size() == static_cast<std::size_t>(spec.precision);
    AppendPadded(spec, Utf8ToUtf16(may_be_cut ? WithoutCutCharacter(bytes) : bytes));
  }

  void AppendWide(const ConversionSpec& spec, const wchar_t* text) {
    if (text == nullptr) text = L"";
    AppendPadded(spec, WideToUtf16({text, TextLength(text, spec.precision)}));
  }

  void AppendUnits(const ConversionSpec& spec, std::u16string_view units) {
    std::size_t length = units.size();
    if (spec.precision >= 0 && static_cast<std::size_t>(spec.precision) < length) {
      length = static_cast<std::size_t>(spec.precision);
      U16_SET_CP_START(units, 0, length);
    }
    AppendPadded(spec, units.substr(0, length));
  }

  // A number up to 0xFFFF is a code unit, any other a character. One byte beyond ASCII is only part
  // of a character, and its sign depends on the platform.
  bool ConvertCharacter(const ConversionSpec& spec, const FormatArgument& arg) {
    if (arg.kind() != Kind::kSigned && arg.kind() != Kind::kUnsigned) return false;
    const unsigned long long code = arg.kind() == Kind::kSigned
                                        ? static_cast<unsigned long long>(arg.as_signed())
                                        : arg.as_unsigned();
    const bool is_character = code <= (arg.size() == 1 ? 0x7F : 0x10FFFF);
    char16_t units[U16_MAX_LENGTH];
    std::size_t length = 0;
    U16_APPEND_UNSAFE(units, length, is_character ? static_cast<UChar32>(code) : 0xFFFD);
    AppendPadded(spec, {units, length});
    return true;
  }

  bool ConvertPointer(const ConversionSpec& spec, const FormatArgument& arg) {
    const bool is_pointer =
        arg.kind() == Kind::kPointer || arg.kind() == Kind::kUtf8 || arg.kind() == Kind::kWide;
    if (!is_pointer) return false;
    ConversionSpec hex;
    hex.type = u'x';
    hex.left = spec.left;
    hex.width = spec.width;
    NumberText number =
        FormatInteger(hex, FormatArgument(reinterpret_cast<std::uintptr_t>(arg.as_pointer())));
    number.prefix = "0x";
    AppendNumber(hex, number);
    return true;
  }

  void AppendNumber(const ConversionSpec& spec, const NumberText& number) {
    std::string text = number.prefix;
    const std::size_t size = number.prefix.size() + number.digits.size();
    const std::size_t width = Width(spec);
    if (number.zero_padded && !spec.left && size < width) text.append(width - size, '0');
    text += number.digits;
    AppendPadded(spec, Utf8ToUtf16(text));
  }

  void AppendPadded(const ConversionSpec& spec, std::u16string_view text) {
    const std::size_t width = Width(spec);
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (!spec.left) result_.append(padding, u' ');
    result_ += text;
    if (spec.left) result_.append(padding, u' ');
  }

  static std::size_t Width(const ConversionSpec& spec) {
    return static_cast<std::size_t>(std::min(spec.width, kMaxWidth));
  }

  ArgumentList args_;
  UnitsOf units_of_;
  std::u16string result_;
};

}  // namespace

void ovrant_ustring::FormatArguments(const ovrant_ustring& format, const FormatArgument* args,
                                     std::size_t count) {
  const UnitsOf units_of = [](const ovrant_ustring& text) -> std::u16string_view {
    return text.units_;
  };
  units_ = Formatter(ArgumentList(args, count), units_of).Format(format.units_);
}

}  // namespace ovrant::utils
