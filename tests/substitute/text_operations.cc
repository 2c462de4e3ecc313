// SPDX-License-Identifier: MIT
// The operations that search, cut and format texts, and their watch.

#include "tests/substitute/text_operations.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "tests/substitute/effects.h"

using stowra_substitute::Record;

namespace {

int recorders = 0;
int misuses = 0;
unsigned long absent_index = static_cast<unsigned long>(-1);

void RecordText(const std::string& operation) {
  if (recorders > 0) Record(operation);
}

void Misuse(const std::string& what) {
  ++misuses;
  Record("misuse: " + what);
}

std::string Quoted(const ovrant::utils::ovrant_ustring& text) { return "'" + text.utf8() + "'"; }

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

std::u16string AsciiLower(std::u16string units) {
  for (char16_t& unit : units) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
  }
  return units;
}

}  // namespace

namespace ovrant::utils {

char16_t ovrant_ustring::at(unsigned long index) const {
  if (index >= units_.size()) Misuse("index " + std::to_string(index) + " of " + utf8());
  return units_[index];
}

unsigned long ovrant_ustring::find(const ovrant_ustring& text, unsigned long start) const {
  RecordText("find " + Quoted(text) + " from " + std::to_string(start));
  if (start > units_.size()) Misuse("find behind the end");
  const std::size_t index = units_.find(text.units_, start);
  return index == std::u16string::npos ? absent_index : index;
}

ovrant_ustring ovrant_ustring::Left(int count) const {
  RecordText("Left " + std::to_string(count));
  if (count < 0) Misuse("Left of a negative count");
  ovrant_ustring left;
  left.units_ = units_.substr(0, static_cast<std::size_t>(std::max(count, 0)));
  return left;
}

ovrant_ustring ovrant_ustring::Mid(int start, int count) const {
  RecordText("Mid " + std::to_string(start) + " " + std::to_string(count));
  if (start < 0 || static_cast<std::size_t>(start) > units_.size()) Misuse("Mid from outside");
  if (count < 0) return stowra_substitute::kNegativeCount;
  ovrant_ustring middle;
  middle.units_ = units_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count));
  return middle;
}

ovrant_ustring ovrant_ustring::Right(int count) const {
  RecordText("Right " + std::to_string(count));
  const std::size_t length = units_.size();
  if (count < 0 || static_cast<std::size_t>(count) > length) Misuse("Right of more than there is");
  ovrant_ustring right;
  right.units_ = units_.substr(length - static_cast<std::size_t>(count));
  return right;
}

int ovrant_ustring::compare_nocase(const ovrant_ustring& other) const {
  return AsciiLower(units_).compare(AsciiLower(other.units_));
}

int ovrant_ustring::to_int() const {
  if (units_.empty() || !std::all_of(units_.begin(), units_.end(), IsDigit)) {
    Misuse("to_int of " + Quoted(*this));
  }
  int value = 0;
  std::istringstream digits(utf8());
  return digits >> value ? value : 0;
}

void ovrant_ustring::replace_all(const ovrant_ustring& from, const ovrant_ustring& to) {
  RecordText("replace_all " + Quoted(from) + " by " + Quoted(to));
  for (std::size_t at = units_.find(from.units_); at != std::u16string::npos;
       at = units_.find(from.units_, at + to.units_.size())) {
    units_.replace(at, from.units_.size(), to.units_);
  }
}

std::vector<ovrant_ustring> ovrant_ustring::TokenizeToVector(
    const ovrant_ustring& delimiters) const {
  RecordText("TokenizeToVector " + Quoted(delimiters));
  std::vector<ovrant_ustring> tokens(1);
  for (const char16_t unit : units_) {
    if (delimiters.units_.find(unit) == std::u16string::npos) {
      tokens.back().units_ += unit;
    } else {
      tokens.emplace_back();
    }
  }
  return tokens;
}

// All that the library formats is a number of type int.
void ovrant_ustring::FormatArguments(const ovrant_ustring& format, const FormatArgument* args,
                                     std::size_t count) {
  RecordText("Format " + Quoted(format));
  const bool fits = count == 1 && args[0].kind() == FormatArgument::Kind::kSigned &&
                    args[0].size() == static_cast<int>(sizeof(int)) && format == "%i";
  if (!fits) Misuse("Format " + Quoted(format) + " of " + std::to_string(count) + " arguments");
  assign_utf8(fits ? std::to_string(args[0].as_signed()).c_str() : "");
}

ovrant_ustring GetFileName(const ovrant_ustring& path, bool with_extension) {
  RecordText("GetFileName " + Quoted(path) + (with_extension ? " with" : " without") +
             " extension");
  const std::string bytes = path.utf8();
  return bytes.substr(bytes.rfind('/') + 1).c_str();
}

}  // namespace ovrant::utils

namespace stowra_substitute {

RecordingText::RecordingText() { ++recorders; }
RecordingText::~RecordingText() { --recorders; }

void SetAbsentIndex(unsigned long index) { absent_index = index; }

int TakeTextMisuses() { return std::exchange(misuses, 0); }

}  // namespace stowra_substitute
