// SPDX-License-Identifier: MIT
// One argument of ovrant_ustring::Format, with its type.

#ifndef COMMON_STOWRAAPI_PLATFORM_FORMAT_ARGUMENT_H_
#define COMMON_STOWRAAPI_PLATFORM_FORMAT_ARGUMENT_H_

#include <cstddef>
#include <type_traits>

namespace ovrant::utils {

class ovrant_ustring;

// Points to an argument for one call of Format and owns nothing. Arguments of any other type than
// these do not compile.
class FormatArgument {
 public:
  enum class Kind { kNone, kSigned, kUnsigned, kDouble, kUtf8, kWide, kString, kPointer };

  FormatArgument() = default;

  // Integers are promoted as C does: bool, char and short become an int.
  template <typename Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
  explicit FormatArgument(Number value) : size_(static_cast<int>(sizeof(value))) {
    const auto promoted = +value;
    if constexpr (std::is_floating_point_v<Number>) {
      kind_ = Kind::kDouble;
      value_.real = static_cast<double>(promoted);
    } else if constexpr (std::is_signed_v<decltype(+value)>) {
      kind_ = Kind::kSigned;
      value_.integer = promoted;
    } else {
      kind_ = Kind::kUnsigned;
      value_.natural = promoted;
    }
  }

  // An enumerator is its number.
  template <typename Enum, std::enable_if_t<std::is_enum_v<Enum>, char> = 0>
  explicit FormatArgument(Enum value)
      : FormatArgument(static_cast<std::underlying_type_t<Enum>>(value)) {}

  explicit FormatArgument(const char* utf8) : kind_(Kind::kUtf8) { value_.pointer = utf8; }
  explicit FormatArgument(const signed char* utf8) : kind_(Kind::kUtf8) { value_.pointer = utf8; }
  explicit FormatArgument(const unsigned char* utf8) : kind_(Kind::kUtf8) { value_.pointer = utf8; }
  explicit FormatArgument(const wchar_t* wide) : kind_(Kind::kWide) { value_.pointer = wide; }
  explicit FormatArgument(const void* pointer) : kind_(Kind::kPointer) { value_.pointer = pointer; }
  explicit FormatArgument(std::nullptr_t) : kind_(Kind::kUtf8) { value_.pointer = nullptr; }
  explicit FormatArgument(const ovrant_ustring& text) : kind_(Kind::kString) {
    value_.pointer = &text;
  }
  explicit FormatArgument(ovrant_ustring&& temporary) = delete;

  Kind kind() const { return kind_; }

  // REQUIRES: the kind that each names. A kUtf8 or kWide pointer may be null.
  long long as_signed() const { return value_.integer; }
  unsigned long long as_unsigned() const { return value_.natural; }
  double as_double() const { return value_.real; }
  const void* as_pointer() const { return value_.pointer; }

  // Bytes of the number before it was promoted.
  int size() const { return size_; }

 private:
  Kind kind_ = Kind::kNone;
  int size_ = 0;
  union {
    long long integer;
    unsigned long long natural;
    double real;
    const void* pointer;
  } value_ = {0};
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_FORMAT_ARGUMENT_H_
