#include "common_stowraapi/platform/text/utf_conversion.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "common_stowraapi/platform/text/ascii_run.h"

namespace ovrant::utils {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// What is read in one step. What is not ASCII is converted on the stack and then appended, so that
// memory that turns out not to be needed is never touched.
constexpr std::size_t kStep = kShortText;

// Brings nearer what `length` units of this step will be for a later one, if below `limit`.
template <bool kToWrite, typename Unit>
void FetchAhead(const Unit* units, std::size_t at, std::size_t length, std::size_t limit) {
  constexpr std::size_t kAhead = 2048 / sizeof(Unit);
  constexpr std::size_t kCacheLine = 64 / sizeof(Unit);
  const std::size_t end = std::min(at + kAhead + length, limit);
  for (std::size_t i = at + kAhead; i < end; i += kCacheLine) {
    __builtin_prefetch(units + i, kToWrite ? 1 : 0);
  }
}

char16_t* AppendCharacter(UChar32 character, char16_t* to) {
  if (character > 0xFFFF) {
    *to++ = U16_LEAD(character);
    *to++ = U16_TRAIL(character);
  } else {
    *to++ = static_cast<char16_t>(character);
  }
  return to;
}

struct FromUtf8 {
  using From = char;
  using To = char16_t;
  static constexpr std::size_t kGrowth = 1;  // units written for each unit read, at most

  static std::u16string FromAscii(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    return {bytes, bytes + text.size()};
  }

  static std::size_t AsciiRun(const char* from, std::size_t length, char16_t* to) {
    return WidenAscii(from, length, to);
  }

  // Converts what is not ASCII at text[at], a character or an ill-formed part, and moves `at`
  // behind it.
  static char16_t* Convert(std::string_view text, std::size_t& at, char16_t* to) {
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
          (lead & 0x7) << 18 | (from[1] & 0x3F) << 12 | (from[2] & 0x3F) << 6 | (from[3] & 0x3F),
          to);
    }
    U8_FWD_1(bytes, at, text.size());
    return AppendCharacter(kReplacement, to);
  }
};

struct ToUtf8 {
  using From = char16_t;
  using To = char;
  static constexpr std::size_t kGrowth = 3;

  static std::string FromAscii(std::u16string_view text) { return {text.begin(), text.end()}; }

  static std::size_t AsciiRun(const char16_t* from, std::size_t length, char* to) {
    return NarrowAscii(from, length, to);
  }

  static char* Convert(std::u16string_view text, std::size_t& at, char* to) {
    UChar32 character = 0;
    U16_NEXT_OR_FFFD(text, at, text.size(), character);
    std::size_t length = 0;
    U8_APPEND_UNSAFE(to, length, character);
    return to + length;
  }
};

// One conversion of one text.
template <typename Direction>
class Converter {
 public:
  using From = typename Direction::From;
  using To = typename Direction::To;
  using Result = std::basic_string<To>;

  explicit Converter(std::basic_string_view<From> text) : text_(text) {}

  // The whole text, with capacity for `spare` more units if it is longer than a step. Not part of
  // its callers, which see to short texts with few registers.
  [[gnu::noinline]] Result Convert(std::size_t spare) {
    Result result;
    while (at_ < text_.size()) {
      const std::size_t stop = at_ + std::min(kStep, text_.size() - at_);
      Reserve(result, 0, spare);
      if (text_.size() > kStep && AppendAscii(stop, result)) continue;
      To buffer[Direction::kGrowth * (kStep + 3)];  // a step's last character may reach beyond it
      const auto size = static_cast<std::size_t>(ConvertTo(stop, buffer) - buffer);
      Reserve(result, size, spare);
      result.append(buffer, size);
    }
    return result;
  }

 private:
  // Converts the ASCII up to `stop` in place, in a result that has the capacity; whether that was
  // all. Every string must be filled before it is written: here with zeros that are copied, which
  // is the fastest way, and while these are still in the nearest cache.
  bool AppendAscii(std::size_t stop, Result& result) {
    static constexpr To kZeros[kStep] = {};
    const std::size_t done = result.size();
    const std::size_t length = stop - at_;
    FetchAhead<false>(text_.data(), at_, length, text_.size());
    FetchAhead<true>(result.data(), done, length, result.capacity());
    result.append(kZeros, length);
    const std::size_t run = Direction::AsciiRun(text_.data() + at_, length, result.data() + done);
    at_ += run;
    if (run == length) return true;
    result.resize(done + run);
    return false;
  }

  // Converts every character that begins before `stop`, and returns the end of the result.
  To* ConvertTo(std::size_t stop, To* to) {
    while (at_ < stop) {
      const std::size_t run = Direction::AsciiRun(text_.data() + at_, stop - at_, to);
      at_ += run;
      to += run;
      while (at_ < stop && !IsAscii(text_[at_])) {
        to = Direction::Convert(text_, at_, to);
      }
    }
    return to;
  }

  // Makes room in `result` for the next `size` units and for the rest of the text, which is taken
  // to be ASCII as long as everything was.
  void Reserve(Result& result, std::size_t size, std::size_t spare) const {
    const std::size_t rest = text_.size() - at_;
    const std::size_t done = result.size() + size;
    if (text_.size() <= kStep || done + rest + spare <= result.capacity()) return;
    const std::size_t wanted = done + (done == at_ ? rest : Direction::kGrowth * rest) + spare;
    if (wanted > result.max_size()) throw std::bad_alloc();
    result.reserve(wanted);
  }

  std::basic_string_view<From> text_;
  std::size_t at_ = 0;  // everything before is converted
};

}  // namespace

std::u16string Utf8ToUtf16(std::string_view bytes) {
  if (bytes.size() <= kShortText && IsAscii(bytes)) return FromUtf8::FromAscii(bytes);
  return Converter<FromUtf8>(bytes).Convert(0);
}

std::string Utf16ToUtf8(std::u16string_view units) {
  if (units.size() <= kShortText && IsAscii(units)) return ToUtf8::FromAscii(units);
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
    char16_t buffer[2];
    units.append(buffer, AppendCharacter(character, buffer));
  }
  return units;
}

}  // namespace ovrant::utils
