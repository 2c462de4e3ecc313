#include "common_stowraapi/platform/utf_conversion.h"

#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "common_stowraapi/platform/ascii_run.h"

namespace ovrant::utils {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// Text is converted through a buffer on the stack, about kStep units at a time, and then appended
// to a string that has the capacity already: nothing is filled with zeros first, and memory that
// turns out not to be needed is never touched.
constexpr std::size_t kStep = 2048;

// What is not ASCII goes to the Unicode library by the window, so that its lengths of 32 bits are
// no limit. While the runs of ASCII between windows are shorter than kLongRun the window doubles,
// from kLeastWindow to kStep: dense text then runs at the library's own speed.
constexpr std::size_t kLongRun = 32;
constexpr std::size_t kLeastWindow = 32;

struct FromUtf8 {
  using From = char;
  using To = char16_t;
  static constexpr std::size_t kGrowth = 1;  // units written for each unit read, at most

  static std::size_t AsciiRun(const char* from, std::size_t length, char16_t* to) {
    return WidenAscii(from, length, to);
  }

  // The last boundary of a character, or of an ill-formed part, at or before from[cut].
  static std::int32_t Boundary(const char* from, std::int32_t cut) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(from);
    U8_SET_CP_START(bytes, 0, cut);
    return cut;
  }

  // Converts `length` units into `to`, which is large enough, and returns how many it wrote.
  static std::int32_t Convert(const char* from, std::int32_t length, char16_t* to) {
    std::int32_t written = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(to, length, &written, from, length, kReplacement, nullptr, &error);
    return written;
  }
};

struct ToUtf8 {
  using From = char16_t;
  using To = char;
  static constexpr std::size_t kGrowth = 3;

  static std::size_t AsciiRun(const char16_t* from, std::size_t length, char* to) {
    return NarrowAscii(from, length, to);
  }

  static std::int32_t Boundary(const char16_t* from, std::int32_t cut) {
    U16_SET_CP_START(from, 0, cut);
    return cut;
  }

  static std::int32_t Convert(const char16_t* from, std::int32_t length, char* to) {
    std::int32_t written = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(to, 3 * length, &written, from, length, kReplacement, nullptr, &error);
    return written;
  }
};

// One conversion of one text.
template <typename Direction>
class Converter {
 public:
  using From = typename Direction::From;
  using To = typename Direction::To;

  explicit Converter(std::basic_string_view<From> text) : text_(text) {}

  // The whole text, with capacity for `spare` more units.
  std::basic_string<To> Convert(std::size_t spare) {
    std::basic_string<To> result;
    To buffer[Direction::kGrowth * 2 * kStep];
    do {
      const auto size = static_cast<std::size_t>(Step(buffer) - buffer);
      Reserve(result, size, spare);
      result.append(buffer, size);
    } while (at_ < text_.size());
    return result;
  }

 private:
  // Converts kStep units and what is left of the last window, and returns the end of the result.
  To* Step(To* to) {
    const std::size_t stop = at_ + std::min(kStep, text_.size() - at_);
    while (at_ < stop) {
      const std::size_t run = Direction::AsciiRun(text_.data() + at_, stop - at_, to);
      at_ += run;
      to += run;
      if (at_ == stop) break;
      window_ = run < kLongRun ? std::min(2 * window_, kStep) : kLeastWindow;
      to += Window(to);
    }
    return to;
  }

  std::int32_t Window(To* to) {
    const From* from = text_.data() + at_;
    auto length = static_cast<std::int32_t>(std::min(window_, text_.size() - at_));
    if (window_ < text_.size() - at_) length = Direction::Boundary(from, length);
    at_ += static_cast<std::size_t>(length);
    return Direction::Convert(from, length, to);
  }

  // Makes room in `result` for the next `size` units and for the rest of the text, which is taken
  // to be ASCII as long as everything was.
  void Reserve(std::basic_string<To>& result, std::size_t size, std::size_t spare) const {
    const std::size_t rest = text_.size() - at_;
    const std::size_t done = result.size() + size;
    if (done + rest + spare <= result.capacity()) return;
    const std::size_t wanted = done + (done == at_ ? rest : Direction::kGrowth * rest) + spare;
    if (wanted > result.max_size()) throw std::bad_alloc();
    result.reserve(wanted);
  }

  std::basic_string_view<From> text_;
  std::size_t at_ = 0;  // everything before is converted
  std::size_t window_ = kLeastWindow;
};

void AppendScalar(UChar32 character, std::u16string& to) {
  if (character > 0xFFFF) {
    to.push_back(U16_LEAD(character));
    to.push_back(U16_TRAIL(character));
  } else {
    to.push_back(static_cast<char16_t>(character));
  }
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view bytes) { return Converter<FromUtf8>(bytes).Convert(0); }

std::string Utf16ToUtf8(std::u16string_view units) {
  return Converter<ToUtf8>(units).Convert(kUtf8Spare);
}

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
    AppendScalar(character, units);
  }
  return units;
}

}  // namespace ovrant::utils
