#include "common_stowraapi/platform/ustring.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/text/case_folding.h"
#include "common_stowraapi/platform/text/find_unit.h"
#include "common_stowraapi/platform/text/number_text.h"
#include "common_stowraapi/platform/text/utf_conversion.h"

namespace ovrant::utils {
namespace {

std::string_view View(const char* utf8) {
  return utf8 == nullptr ? std::string_view() : std::string_view(utf8);
}

// The standard library's own goes unit by unit.
int CompareUnits(std::u16string_view a, std::u16string_view b) {
  constexpr std::size_t kStep = 8;
  const std::size_t common = std::min(a.size(), b.size());
  std::size_t at = 0;
  while (common - at >= kStep &&
         std::memcmp(a.data() + at, b.data() + at, kStep * sizeof(char16_t)) == 0) {
    at += kStep;
  }
  for (; at < common; ++at) {
    if (a[at] != b[at]) return a[at] < b[at] ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

// As std::u16string_view::find, which goes unit by unit.
std::size_t FindUnits(std::u16string_view whole, std::u16string_view text, std::size_t start) {
  if (text.empty() || text[0] >= 0x80 || start >= whole.size()) return whole.find(text, start);
  for (std::size_t at = start; whole.size() - at >= text.size(); ++at) {
    at += FindUnit(whole.substr(at), static_cast<char>(text[0]));
    if (whole.size() - at < text.size()) break;
    if (std::memcmp(whole.data() + at, text.data(), text.size() * sizeof(char16_t)) == 0) return at;
  }
  return std::u16string_view::npos;
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
  const std::size_t index = FindUnits(units_, text.units_, start);
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
  return CompareUnits(units_, other.units_);
}

int ovrant_ustring::compare_nocase(const ovrant_ustring& other) const {
  return CompareFolded(units_, other.units_);
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
