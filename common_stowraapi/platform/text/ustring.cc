// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/ustring.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/text/number_text.h"
#include "common_stowraapi/platform/text/utf_conversion.h"

namespace ovrant::utils {
namespace {

std::string_view View(const char* utf8) {
  return utf8 == nullptr ? std::string_view() : std::string_view(utf8);
}

// The Unicode library counts in 32 bits. Of a longer text only so much is compared.
std::int32_t CaseLength(std::u16string_view units) {
  constexpr std::size_t kMaxLength = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(units.size(), kMaxLength));
}

}  // namespace

ovrant_ustring::ovrant_ustring() = default;
ovrant_ustring::ovrant_ustring(const char* utf8) : units_(Utf8ToUtf16(View(utf8))) {}
ovrant_ustring::ovrant_ustring(const char* utf8, unsigned long length)
    : units_(Utf8ToUtf16(utf8 == nullptr ? std::string_view() : std::string_view(utf8, length))) {}
ovrant_ustring::ovrant_ustring(const wchar_t* wide)
    : units_(WideToUtf16(wide == nullptr ? std::wstring_view() : std::wstring_view(wide))) {}
ovrant_ustring::ovrant_ustring(const ovrant_ustring& other) = default;
ovrant_ustring::~ovrant_ustring() = default;
ovrant_ustring& ovrant_ustring::operator=(const ovrant_ustring& other) = default;

ovrant_ustring& ovrant_ustring::operator=(const char* utf8) {
  assign_utf8(utf8);
  return *this;
}

ovrant_ustring& ovrant_ustring::assign_utf8(const char* utf8) {
  units_ = Utf8ToUtf16(View(utf8));
  return *this;
}

std::string ovrant_ustring::utf8() const { return Utf16ToUtf8(units_); }

bool ovrant_ustring::empty() const { return units_.empty(); }
unsigned long ovrant_ustring::length() const { return units_.size(); }
void ovrant_ustring::clear() { units_.clear(); }

ovrant_ustring& ovrant_ustring::operator+=(const ovrant_ustring& other) {
  units_ += other.units_;
  return *this;
}

char16_t& ovrant_ustring::operator[](unsigned long index) { return units_[index]; }
char16_t ovrant_ustring::at(unsigned long index) const { return units_[index]; }

unsigned long ovrant_ustring::find(const ovrant_ustring& text, unsigned long start) const {
  const std::size_t index = units_.find(text.units_, start);
  return index == std::u16string::npos ? npos : static_cast<unsigned long>(index);
}

ovrant_ustring ovrant_ustring::Left(int count) const { return Mid(0, count); }

ovrant_ustring ovrant_ustring::Mid(int start, int count) const {
  ovrant_ustring part;
  if (start < 0 || count < 0 || static_cast<std::size_t>(start) > units_.size()) return part;
  part.units_.assign(units_, static_cast<std::size_t>(start), static_cast<std::size_t>(count));
  return part;
}

ovrant_ustring ovrant_ustring::Right(int count) const {
  ovrant_ustring part;
  if (count < 0) return part;
  const auto wanted = static_cast<std::size_t>(count);
  part.units_.assign(units_, wanted < units_.size() ? units_.size() - wanted : 0);
  return part;
}

int ovrant_ustring::compare(const ovrant_ustring& other) const {
  return units_.compare(other.units_);
}

int ovrant_ustring::compare_nocase(const ovrant_ustring& other) const {
  UErrorCode error = U_ZERO_ERROR;
  return u_strCaseCompare(units_.data(), CaseLength(units_), other.units_.data(),
                          CaseLength(other.units_), U_FOLD_CASE_DEFAULT, &error);
}

int ovrant_ustring::to_int() const { return ReadInt(units_); }
float ovrant_ustring::to_float() const { return ReadFloat(units_); }

void ovrant_ustring::replace_all(const ovrant_ustring& from, const ovrant_ustring& to) {
  std::size_t found = from.units_.empty() ? std::u16string::npos : units_.find(from.units_);
  if (found == std::u16string::npos) return;
  std::u16string replaced;
  std::size_t copied = 0;
  for (; found != std::u16string::npos; found = units_.find(from.units_, copied)) {
    replaced.append(units_, copied, found - copied);
    replaced += to.units_;
    copied = found + from.units_.size();
  }
  replaced.append(units_, copied);
  units_ = std::move(replaced);
}

std::vector<ovrant_ustring> ovrant_ustring::TokenizeToVector(
    const ovrant_ustring& delimiters) const {
  std::vector<ovrant_ustring> tokens;
  for (std::size_t begin = 0;;) {
    const std::size_t end = units_.find_first_of(delimiters.units_, begin);
    tokens.emplace_back().units_.assign(units_, begin, end - begin);
    if (end == std::u16string::npos) return tokens;
    begin = end + 1;
  }
}

}  // namespace ovrant::utils
