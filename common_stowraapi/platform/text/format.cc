// SPDX-License-Identifier: MIT
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

bool IsOneOf(char16_t unit, std::u16string_view set) {
  return set.find(unit) != std::u16string_view::npos;
}

bool IsNumber(const FormatArgument& arg) {
  return arg.kind() == Kind::kSigned || arg.kind() == Kind::kUnsigned ||
         arg.kind() == Kind::kDouble;
}

// The length of a text that ends at its first NUL or at the precision. Nothing behind that is read.
template <typename Unit>
std::size_t TextLength(const Unit* text, int precision) {
  if (precision == ConversionSpec::kNoPrecision) return std::char_traits<Unit>::length(text);
  std::size_t length = 0;
  while (length < static_cast<std::size_t>(precision) && text[length] != 0) ++length;
  return length;
}

// Leaves out a character that is cut in two at the end of `bytes`.
std::string_view WithoutCutCharacter(std::string_view bytes) {
  const auto* from = reinterpret_cast<const std::uint8_t*>(bytes.data());
  auto length = static_cast<std::ptrdiff_t>(bytes.size());
  U8_TRUNCATE_IF_INCOMPLETE(from, 0, length);
  return bytes.substr(0, static_cast<std::size_t>(length));
}

class Formatter {
 public:
  explicit Formatter(ArgumentList args) : args_(args) {}

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
  // False, with nothing appended, if there is no such conversion or its argument does not fit. It
  // takes the argument even then, so that the next conversion gets its own.
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
    AppendAscii(IsOneOf(spec.type, u"diuoxX") ? FormatInteger(spec, arg)
                                              : FormatFloating(spec, arg));
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
        AppendUnits(spec, static_cast<const ovrant_ustring*>(arg.as_pointer())->units());
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

  // A number up to 0xFFFF is a code unit. A greater one is a character. A char beyond ASCII is only
  // a part of a character, and its sign depends on the platform.
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
    const std::string digits =
        FormatInteger(hex, FormatArgument(reinterpret_cast<std::uintptr_t>(arg.as_pointer())));
    AppendPadded(spec, u"0x" + std::u16string(digits.begin(), digits.end()));
    return true;
  }

  void AppendAscii(const std::string& text) { result_.append(text.begin(), text.end()); }

  void AppendPadded(const ConversionSpec& spec, std::u16string_view text) {
    const auto width = static_cast<std::size_t>(std::min(spec.width, kMaxFormatCount));
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (!spec.left) result_.append(padding, u' ');
    result_ += text;
    if (spec.left) result_.append(padding, u' ');
  }

  ArgumentList args_;
  std::u16string result_;
};

}  // namespace

void ovrant_ustring::FormatArguments(const ovrant_ustring& format, const FormatArgument* args,
                                     std::size_t count) {
  units_ = Formatter(ArgumentList(args, count)).Format(format.units_);
}

}  // namespace ovrant::utils
