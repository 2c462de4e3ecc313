// SPDX-License-Identifier: MIT
// The text type of every public interface, and helpers for it.

#ifndef COMMON_STOWRAAPI_PLATFORM_USTRING_H_
#define COMMON_STOWRAAPI_PLATFORM_USTRING_H_

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/format_argument.h"

namespace ovrant::utils {

// A std::basic_string or view of `Unit`, or what converts to one. Not a pointer or an array, which
// may be null and ends at its NUL.
template <typename Text, typename Unit>
using IfText = std::enable_if_t<std::is_convertible_v<const Text&, std::basic_string_view<Unit>> &&
                                    !std::is_convertible_v<const Text&, const Unit*>,
                                int>;

// A Unicode string of UTF-16 code units, with value semantics. Indexes and lengths count code
// units. NUL is a unit like any other.
//
// Threads may use different strings at the same time. They may read one string at the same time.
//
// Bytes that are not UTF-8 become U+FFFD, one for each maximal ill-formed part. A lone surrogate
// becomes U+FFFD in utf8().
//
// These may throw std::bad_alloc, and then leave the strings as they were:
//   - Constructors and assignments, except the default and the move.
//   - The operators +=, + and <<.
//   - utf8, Left, Mid, Right, to_float, replace_all, TokenizeToVector, Format and GetFileName.
//
// Nothing else throws. A literal in place of a string is made into one first, which may throw.
class STOWRA_EXPORT ovrant_ustring {
 public:
  // What find() gives for an absent text: all bits set.
  static constexpr unsigned long npos = static_cast<unsigned long>(-1);

  ovrant_ustring();

  // From NUL-terminated UTF-8. A null pointer gives the empty string.
  ovrant_ustring(const char* utf8);  // NOLINT(google-explicit-constructor): literals are strings

  // From `length` bytes of UTF-8, without a terminator. A null pointer gives the empty string.
  ovrant_ustring(const char* utf8, unsigned long length);

  // From a NUL-terminated wide string: UTF-32, or UTF-16 where wchar_t has 16 bits. What is not a
  // Unicode scalar value becomes U+FFFD. A null pointer gives the empty string.
  ovrant_ustring(const wchar_t* wide);  // NOLINT(google-explicit-constructor)

  // From UTF-8 or UTF-16 of any length, NULs included. UTF-16 is copied as it is. They are explicit
  // so that a std::string never has to choose between two of a host's overloads.
  template <typename Text, IfText<Text, char> = 0>
  explicit ovrant_ustring(const Text& utf8)
      : ovrant_ustring(std::string_view{utf8}.data(), std::string_view{utf8}.size()) {}
  template <typename Text, IfText<Text, char16_t> = 0>
  explicit ovrant_ustring(const Text& units) : units_(std::u16string_view(units)) {}

  ovrant_ustring(const ovrant_ustring& other);
  ovrant_ustring(ovrant_ustring&& other) noexcept = default;
  ~ovrant_ustring();

  ovrant_ustring& operator=(const ovrant_ustring& other);
  ovrant_ustring& operator=(ovrant_ustring&& other) noexcept = default;

  // Replace the content by NUL-terminated UTF-8, which may lie anywhere. A null pointer gives the
  // empty string.
  ovrant_ustring& operator=(const char* utf8);
  ovrant_ustring& assign_utf8(const char* utf8);

  // Replace the content by UTF-8 or UTF-16. The text may be a part of this string.
  template <typename Text, IfText<Text, char> = 0>
  ovrant_ustring& operator=(const Text& utf8) {
    return *this = ovrant_ustring(utf8);
  }
  template <typename Text, IfText<Text, char16_t> = 0>
  ovrant_ustring& operator=(const Text& units) {
    units_ = std::u16string_view(units);
    return *this;
  }

  // The whole string as UTF-8, NULs included.
  std::string utf8() const;

  // The code units. The view is valid until the string is next changed, moved or destroyed. No NUL
  // needs to stand behind it.
  std::u16string_view units() const { return units_; }

  bool empty() const;
  unsigned long length() const;
  void clear();

  // Append. A string may be appended to itself.
  ovrant_ustring& operator+=(const ovrant_ustring& other);
  template <typename Text, IfText<Text, char> = 0>
  ovrant_ustring& operator+=(const Text& utf8) {
    return *this += ovrant_ustring(utf8);
  }
  template <typename Text, IfText<Text, char16_t> = 0>
  ovrant_ustring& operator+=(const Text& units) {
    units_ += std::u16string_view(units);
    return *this;
  }

  // REQUIRES: index < length(). The reference is valid until the string is next changed.
  char16_t& operator[](unsigned long index);
  char16_t at(unsigned long index) const;

  // Index of the first occurrence of `text` at or after `start`, or npos. The empty text occurs at
  // `start` if that is not beyond length().
  unsigned long find(const ovrant_ustring& text, unsigned long start = 0) const;

  // The first, the middle and the last units, clamped to the string. A negative count, or a start
  // outside the string, gives the empty string.
  ovrant_ustring Left(int count) const;
  ovrant_ustring Mid(int start, int count) const;
  ovrant_ustring Right(int count) const;

  // Negative, zero or positive, by the value of the code units.
  int compare(const ovrant_ustring& other) const;

  // The same for the two strings in Unicode's full case folding. Compares the first 2^31 - 1 units.
  int compare_nocase(const ovrant_ustring& other) const;

  // The decimal number that the string spells, in any locale. White space around it and a sign are
  // allowed. Gives 0 if the string is no number or the number does not fit.
  int to_int() const;
  float to_float() const;

  // Replaces every occurrence of `from`, found from the left without overlap. An empty `from`
  // changes nothing.
  void replace_all(const ovrant_ustring& from, const ovrant_ustring& to);

  // Splits at every unit that occurs in `delimiters`. Empty tokens are kept: n delimiters in the
  // string give n + 1 tokens, and the empty string gives one.
  std::vector<ovrant_ustring> TokenizeToVector(const ovrant_ustring& delimiters) const;

  // Replaces the content by `format`, in the manner of printf. Understands flags, width, precision,
  // '*', length modifiers and the conversions d i u o x X c s p a A e E f F g G %. The decimal
  // point is "." in any locale.
  //
  // The argument's own type decides how it is read, after C's promotions. An integer is converted
  // for a floating conversion, and the reverse. If any other argument does not fit its conversion,
  // or is missing, the conversion's own text stays in the result.
  //
  // %s  takes UTF-8, wide text or an ovrant_ustring; a null pointer is empty. A precision counts
  //     the text's own units, and no more are read. It never cuts a character in two.
  // %c  takes a code unit or a code point.
  // %p  takes a pointer.
  // %n  writes nothing.
  //
  // The modifiers h and hh narrow an integer, and the others do nothing. A width, and the precision
  // of a number, count up to 4096.
  template <typename... Args>
  void Format(ovrant_ustring format,
              Args... args) {  // by value: an in-class constant has no address
    // One more element than there are arguments: an array may not be empty.
    const FormatArgument list[sizeof...(Args) + 1] = {FormatArgument(args)..., FormatArgument()};
    FormatArguments(format, list, sizeof...(Args));
  }

  // Writes UTF-8.
  template <typename Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const ovrant_ustring& text) {
    const std::string utf8 = text.utf8();
    return out << std::basic_string_view<char, Traits>(utf8.data(), utf8.size());
  }

 private:
  void FormatArguments(const ovrant_ustring& format, const FormatArgument* args, std::size_t count);

  std::u16string units_;
};

inline bool operator==(const ovrant_ustring& a, const ovrant_ustring& b) {
  return a.compare(b) == 0;
}
inline bool operator!=(const ovrant_ustring& a, const ovrant_ustring& b) {
  return a.compare(b) != 0;
}
inline bool operator<(const ovrant_ustring& a, const ovrant_ustring& b) { return a.compare(b) < 0; }

// The two texts joined. A `char*` is NUL-terminated UTF-8.
inline ovrant_ustring operator+(const ovrant_ustring& left, const char* right) {
  ovrant_ustring sum(left);
  sum += ovrant_ustring(right);
  return sum;
}
// Leaves what converts to a `char*` to the one above.
template <typename Text, std::enable_if_t<std::is_convertible_v<const Text&, ovrant_ustring> &&
                                              !std::is_convertible_v<const Text&, const char*>,
                                          int> = 0>
ovrant_ustring operator+(const ovrant_ustring& left, const Text& right) {
  ovrant_ustring sum(left);
  sum += right;
  return sum;
}
inline ovrant_ustring operator+(const char* left, const ovrant_ustring& right) {
  ovrant_ustring sum(left);
  sum += right;
  return sum;
}

// Headers and caches: ordered by ovrant_ustring::compare.
using StringMap = std::map<ovrant_ustring, ovrant_ustring>;

// What follows the last '/' of `path` (on Windows the last '/' or '\\'). Without `with_extension`,
// leaves out the last '.' and what follows it, unless the name begins with that '.'.
STOWRA_EXPORT ovrant_ustring GetFileName(const ovrant_ustring& path, bool with_extension);

}  // namespace ovrant::utils

template <>
struct std::hash<ovrant::utils::ovrant_ustring> {
  std::size_t operator()(const ovrant::utils::ovrant_ustring& text) const noexcept {
    return std::hash<std::u16string_view>()(text.units());
  }
};

#endif  // COMMON_STOWRAAPI_PLATFORM_USTRING_H_
