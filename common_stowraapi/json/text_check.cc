#include "common_stowraapi/json/text_check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "common_stowraapi/json/string_scan.h"

namespace ovrant::json {
namespace {

constexpr std::size_t kPadding = 16;
constexpr std::size_t kMaxSize = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kMaxFractionZeros = 99'999'999;
constexpr std::ptrdiff_t kMaxExponentDigits = 9;

// The bytes outside strings that matter here.
constexpr std::array<bool, 256> MarkBytes() {
  std::array<bool, 256> marks{};
  for (const char c : {'\0', '"', '{', '}', '[', ']', '-', '.'}) {
    marks[static_cast<unsigned char>(c)] = true;
  }
  return marks;
}
constexpr std::array<bool, 256> kMarked = MarkBytes();

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// One pass over a NUL-terminated text.
class Check {
 public:
  Check(char* text, char* end, unsigned int max_depth)
      : at_(text), end_(end), max_depth_(max_depth) {}

  bool Run() {
    at_ += std::strspn(at_, " \t\n\r");
    if (*at_ != '{' && *at_ != '[') return false;
    for (;; ++at_) {
      while (!kMarked[static_cast<unsigned char>(*at_)]) ++at_;
      if (at_ == end_) return true;
      if (!Step()) return false;
    }
  }

 private:
  // Checks what the marked byte begins, up to its last byte.
  bool Step() {
    switch (*at_) {
      case '{':
      case '[':
        return ++depth_ <= max_depth_;
      case '}':
      case ']':
        return depth_-- != 0;
      case '"':
        return SkipString();
      case '-':
        if (at_[-1] == 'e' || at_[-1] == 'E') RaiseExponent();
        return true;
      default:
        return SkipFractionZeros();
    }
  }

  bool SkipString() {
    for (++at_;; at_ += 2) {
      at_ += FindEscape(at_, end_) - at_;
      if (*at_ == '"') return true;
      if (*at_ != '\\' || at_ + 1 == end_) return false;
    }
  }

  void RaiseExponent() {
    char* first = at_ + 1;
    while (*first == '0') ++first;
    char* last = first;
    while (IsDigit(*last)) ++last;
    if (last - first > kMaxExponentDigits) {
      std::fill(first, last - kMaxExponentDigits, '0');
      std::fill(last - kMaxExponentDigits, last, '9');
    }
    at_ = last - 1;
  }

  bool SkipFractionZeros() {
    const std::size_t zeros = std::strspn(at_ + 1, "0");
    at_ += zeros;
    return zeros <= kMaxFractionZeros;
  }

  char* at_;
  char* const end_;
  const unsigned int max_depth_;
  unsigned int depth_ = 0;
};

}  // namespace

bool PrepareText(std::string& text, unsigned int max_depth) {
  text.resize(std::strlen(text.c_str()));
  if (text.size() > kMaxSize) return false;
  if (!Check(text.data(), text.data() + text.size(), max_depth).Run()) return false;
  text.append(kPadding, '\0');
  return true;
}

}  // namespace ovrant::json
