#include "common_stowraapi/platform/text/case_folding.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace ovrant::utils {
namespace {

int FoldAscii(int unit) { return unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit; }

// The code units of a text in full case folding, one after the other. Folding looks at one
// character at a time, so a text may be folded in pieces.
class FoldedUnits {
 public:
  static constexpr int kEnd = -1;

  explicit FoldedUnits(std::u16string_view text) : text_(text) {}

  int Next() {
    if (next_ == end_) {
      if (text_.empty()) return kEnd;
      if (text_.front() < 0x80) return NextAscii();
      Refill();
    }
    return buffer_[next_++];
  }

 private:
  static constexpr std::size_t kPiece = 64;
  static constexpr std::size_t kGrowth = 3;  // units that one unit folds to, at most

  int NextAscii() {
    const int unit = FoldAscii(text_.front());
    text_.remove_prefix(1);
    return unit;
  }

  void Refill() {
    std::size_t piece = std::min(kPiece, text_.size());
    if (piece < text_.size()) U16_SET_CP_START(text_, 0, piece);
    UErrorCode error = U_ZERO_ERROR;
    end_ = u_strFoldCase(buffer_, kPiece * kGrowth, text_.data(), static_cast<std::int32_t>(piece),
                         U_FOLD_CASE_DEFAULT, &error);
    next_ = 0;
    text_.remove_prefix(piece);
  }

  std::u16string_view text_;  // what is not folded yet
  char16_t buffer_[kPiece * kGrowth];
  std::int32_t next_ = 0;
  std::int32_t end_ = 0;
};

}  // namespace

int CompareFolded(std::u16string_view a, std::u16string_view b) {
  FoldedUnits units_of_a(a);
  FoldedUnits units_of_b(b);
  for (;;) {
    const int unit_of_a = units_of_a.Next();
    const int unit_of_b = units_of_b.Next();
    if (unit_of_a != unit_of_b) return unit_of_a - unit_of_b;
    if (unit_of_a == FoldedUnits::kEnd) return 0;
  }
}

}  // namespace ovrant::utils
