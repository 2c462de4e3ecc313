// The text type of every public interface, and the few helpers that stand beside it.

#ifndef COMMON_STOWRAAPI_PLATFORM_USTRING_H_
#define COMMON_STOWRAAPI_PLATFORM_USTRING_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/format_argument.h"

namespace ovrant::utils {

// A Unicode string of UTF-16 code units with value semantics; every index and length counts code
// units, and NUL is a unit like any other. Distinct strings may be used from distinct threads; one
// string, like a std::string, by one thread at a time unless all of them only read.
//
// No operation fails but for want of memory: std::bad_alloc then leaves the string as it was.
// Bytes that are not UTF-8 become U+FFFD, one for each maximal ill-formed part; a lone surrogate
// becomes U+FFFD on the way back.
class STOWRA_EXPORT ovrant_ustring {
 public:
  // "Absent", as find() gives it: all bits set.
  static constexpr unsigned long npos = static_cast<unsigned long>(-1);

  ovrant_ustring();

  // From NUL-terminated UTF-8. A null pointer gives the empty string.
  ovrant_ustring(const char* utf8);  // NOLINT(google-explicit-constructor): literals are strings

  // From `length` bytes of UTF-8, which need no terminator. A null pointer gives the empty string.
  ovrant_ustring(const char* utf8, unsigned long length);

  // From a NUL-terminated wide string: UTF-32, or UTF-16 where wchar_t has 16 bits. A value that is
  // no Unicode scalar value becomes U+FFFD. A null pointer gives the empty string.
  ovrant_ustring(const wchar_t* wide);  // NOLINT(google-explicit-constructor)

  ovrant_ustring(const ovrant_ustring& other);
  ovrant_ustring(ovrant_ustring&& other) noexcept = default;
  ~ovrant_ustring();

  ovrant_ustring& operator=(const ovrant_ustring& other);
  ovrant_ustring& operator=(ovrant_ustring&& other) noexcept = default;

  // Replace the content by NUL-terminated UTF-8, which may lie anywhere.
  ovrant_ustring& operator=(const char* utf8);
  ovrant_ustring& assign_utf8(const char* utf8);

  // The whole string, NULs included, as UTF-8.
  std::string utf8() const;

  bool empty() const;
  unsigned long length() const;
  void clear();

  // Appends; a string may be appended to itself.
  ovrant_ustring& operator+=(const ovrant_ustring& other);

  // REQUIRES: index < length(). The reference is valid until the string is next changed.
  char16_t& operator[](unsigned long index);
  char16_t at(unsigned long index) const;

  // Index of the first occurrence of `text` at or after `start`, or npos. The empty text occurs at
  // `start` if that is not beyond length().
  unsigned long find(const ovrant_ustring& text, unsigned long start) const;

  // The first, the middle and the last units. Clamped to the string: a negative count, or a start
  // outside it, gives the empty string.
  ovrant_ustring Left(int count) const;
  ovrant_ustring Mid(int start, int count) const;
  ovrant_ustring Right(int count) const;

  // Negative, zero or positive, by the value of the code units.
  int compare(const ovrant_ustring& other) const;

  // The same between the two strings in Unicode's full case folding.
  int compare_nocase(const ovrant_ustring& other) const;

  // The decimal number that the string spells, whatever the locale, with optional white space
  // around it and an optional sign; 0 for a text that is no number or a number that does not fit.
  int to_int() const;
  float to_float() const;

  // Replaces every occurrence of `from`, found from the left without overlap. An empty `from`
  // changes nothing.
  void replace_all(const ovrant_ustring& from, const ovrant_ustring& to);

  // Splits at every unit that occurs in `delimiters`. Every empty token is kept, so n delimiters in
  // the string give n + 1 tokens, and the empty string gives one.
  std::vector<ovrant_ustring> TokenizeToVector(const ovrant_ustring& delimiters) const;

  // Replaces the content by `format` in the manner of printf: flags, width, precision, '*', the
  // length modifiers and d i u o x X c s p a A e E f F g G %, with "." as decimal point whatever
  // the locale. The arguments' own types decide, so none is ever read as another: an integer for a
  // floating conversion and the reverse are converted, any other argument that does not fit its
  // conversion, or is not there, leaves the conversion's own text in the result. `%s` takes UTF-8,
  // wide text or an ovrant_ustring, and its precision counts the units of that, of which no more
  // are read; a character cut in two is left out. `%c` takes a code unit or a code point. `%n`
  // writes nothing. Of the length modifiers h and hh narrow an integer and the others do nothing. A
  // width, and the precision of a number, count up to 4096.
  template <typename... Args>
  void Format(ovrant_ustring format, const Args&... args) {
    // One more element than there are arguments: an array may not be empty.
    const FormatArgument list[sizeof...(Args) + 1] = {FormatArgument(args)..., FormatArgument()};
    FormatArguments(format, list, sizeof...(Args));
  }

 private:
  friend struct UstringUnits;

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

// A copy of `left` with the NUL-terminated UTF-8 text `right` appended.
inline ovrant_ustring operator+(const ovrant_ustring& left, const char* right) {
  ovrant_ustring sum(left);
  sum += ovrant_ustring(right);
  return sum;
}

// Headers and caches: ordered by ovrant_ustring::compare.
using StringMap = std::map<ovrant_ustring, ovrant_ustring>;

// What follows the last '/' of `path` (on Windows the last '/' or '\\'). Without `with_extension`
// the last '.' and what follows it is left out too, unless the name begins there.
STOWRA_EXPORT ovrant_ustring GetFileName(const ovrant_ustring& path, bool with_extension);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_USTRING_H_
