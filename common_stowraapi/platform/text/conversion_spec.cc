// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/text/conversion_spec.h"

#include <algorithm>
#include <limits>

namespace ovrant::utils {
namespace {

constexpr int kMost = std::numeric_limits<int>::max();

class Reader {
 public:
  Reader(std::u16string_view format, ArgumentList& args) : format_(format), args_(args) {}

  ConversionSpec Read() {
    while (ReadFlag()) {
    }
    spec_.width = ReadCount();
    if (spec_.width < 0) {
      spec_.left = true;
      spec_.width = spec_.width == -kMost ? kMost : -spec_.width;
    }
    if (Skip(u'.')) spec_.precision = std::max(ReadCount(), ConversionSpec::kNoPrecision);
    ReadLengthModifier();
    if (at_ < format_.size()) spec_.type = format_[at_++];
    spec_.text = format_.substr(0, at_);
    return spec_;
  }

 private:
  bool Skip(char16_t unit) {
    if (at_ == format_.size() || format_[at_] != unit) return false;
    ++at_;
    return true;
  }

  bool ReadFlag() {
    bool* const flag = at_ == format_.size() ? nullptr : FlagOf(format_[at_]);
    if (flag == nullptr) return false;
    *flag = true;
    ++at_;
    return true;
  }

  bool* FlagOf(char16_t unit) {
    switch (unit) {
      case u'-':
        return &spec_.left;
      case u'+':
        return &spec_.plus;
      case u' ':
        return &spec_.space;
      case u'#':
        return &spec_.alternate;
      case u'0':
        return &spec_.zero;
      default:
        return nullptr;
    }
  }

  // Reads digits, or takes an argument for '*'. Gives 0 for neither, and at most kMost or -kMost.
  int ReadCount() {
    if (Skip(u'*')) return CountOf(args_.Take());
    int count = 0;
    for (; at_ < format_.size() && format_[at_] >= u'0' && format_[at_] <= u'9'; ++at_) {
      const int digit = format_[at_] - u'0';
      count = count > (kMost - digit) / 10 ? kMost : 10 * count + digit;
    }
    return count;
  }

  int CountOf(const FormatArgument& arg) {
    if (arg.kind() == FormatArgument::Kind::kSigned) {
      return static_cast<int>(std::clamp<long long>(arg.as_signed(), -kMost, kMost));
    }
    if (arg.kind() == FormatArgument::Kind::kUnsigned) {
      return static_cast<int>(std::min<unsigned long long>(arg.as_unsigned(), kMost));
    }
    spec_.fits = false;
    return 0;
  }

  void ReadLengthModifier() {
    if (Skip(u'h')) {
      spec_.bytes = Skip(u'h') ? 1 : 2;
      return;
    }
    if (Skip(u'l')) {
      Skip(u'l');
      return;
    }
    for (const char16_t modifier : {u'L', u'q', u'j', u'z', u't'}) {
      if (Skip(modifier)) return;
    }
  }

  std::u16string_view format_;
  ArgumentList& args_;
  ConversionSpec spec_;
  std::size_t at_ = 1;  // behind the '%'
};

}  // namespace

FormatArgument ArgumentList::Take() {
  if (left_ == 0) return {};
  --left_;
  return *args_++;
}

ConversionSpec ReadConversion(std::u16string_view format, ArgumentList& args) {
  return Reader(format, args).Read();
}

}  // namespace ovrant::utils
