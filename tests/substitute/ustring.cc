// SPDX-License-Identifier: MIT
// Making, converting and comparing well-formed texts, unit by unit.

#include "common_stowraapi/platform/ustring.h"

#include <cstring>
#include <locale>
#include <sstream>
#include <utility>

#include "tests/substitute/transport_watch.h"

namespace {

// Takes one character from the front of `bytes`, which are well-formed.
char32_t TakeUtf8(const unsigned char*& bytes) {
  const unsigned char lead = *bytes++;
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  char32_t value = lead & (0x3F >> more);
  for (int i = 0; i < more; ++i) value = value << 6 | (*bytes++ & 0x3F);
  return value;
}

void AppendUtf16(std::u16string& units, char32_t c) {
  if (c < 0x10000) {
    units += static_cast<char16_t>(c);
  } else {
    units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
    units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  }
}

std::u16string FromUtf8(const char* utf8, unsigned long length) {
  std::u16string units;
  const auto* bytes = reinterpret_cast<const unsigned char*>(utf8);
  const unsigned char* const end = bytes + length;
  while (bytes != end) AppendUtf16(units, TakeUtf8(bytes));
  return units;
}

std::u16string FromUtf8(const char* utf8) {
  return utf8 == nullptr ? std::u16string() : FromUtf8(utf8, std::strlen(utf8));
}

void AppendUtf8(std::string& bytes, char32_t c) {
  const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  constexpr unsigned char kLeads[] = {0x00, 0xC0, 0xE0, 0xF0};
  bytes += static_cast<char>(kLeads[more] | (c >> (6 * more)));
  for (int left = more - 1; left >= 0; --left) {
    bytes += static_cast<char>(0x80 | ((c >> (6 * left)) & 0x3F));
  }
}

}  // namespace

namespace ovrant::utils {

ovrant_ustring::ovrant_ustring() { stowra_substitute::WatchEmptyString(this); }
ovrant_ustring::ovrant_ustring(const char* utf8) : units_(FromUtf8(utf8)) {}
ovrant_ustring::ovrant_ustring(const char* utf8, unsigned long length)
    : units_(utf8 == nullptr ? std::u16string() : FromUtf8(utf8, length)) {}
ovrant_ustring::ovrant_ustring(const wchar_t* wide) {
  for (; *wide != L'\0'; ++wide) AppendUtf16(units_, static_cast<char32_t>(*wide));
}
ovrant_ustring::ovrant_ustring(const ovrant_ustring& other) = default;
ovrant_ustring::~ovrant_ustring() = default;
ovrant_ustring& ovrant_ustring::operator=(const ovrant_ustring& other) = default;

ovrant_ustring& ovrant_ustring::operator=(const char* utf8) { return assign_utf8(utf8); }

ovrant_ustring& ovrant_ustring::assign_utf8(const char* utf8) {
  units_ = FromUtf8(utf8);
  return *this;
}

std::string ovrant_ustring::utf8() const {
  std::string bytes;
  for (std::size_t i = 0; i < units_.size(); ++i) {
    char32_t c = units_[i];
    if (c >= 0xD800 && c <= 0xDBFF) c = 0x10000 + ((c - 0xD800) << 10) + (units_[++i] - 0xDC00U);
    AppendUtf8(bytes, c);
  }
  return bytes;
}

bool ovrant_ustring::empty() const { return units_.empty(); }
unsigned long ovrant_ustring::length() const { return units_.size(); }
void ovrant_ustring::clear() { units_.clear(); }

ovrant_ustring& ovrant_ustring::operator+=(const ovrant_ustring& other) {
  units_ += other.units_;
  return *this;
}

int ovrant_ustring::compare(const ovrant_ustring& other) const {
  return units_.compare(other.units_);
}

float ovrant_ustring::to_float() const {
  std::istringstream text(utf8());
  text.imbue(std::locale::classic());
  float value = 0;
  if (!(text >> value) || !(text >> std::ws).eof()) return 0;
  return value;
}

}  // namespace ovrant::utils
