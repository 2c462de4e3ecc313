// SPDX-License-Identifier: MIT
// The host's text: QString converts, compares and reads numbers.

#include <QString>

#include "platform_names.h"

namespace ovrant::utils {

namespace {

// Shares the units, which must outlive the view.
QStringView ViewOf(const ovrant_ustring& text) {
  return {text.units().data(), static_cast<qsizetype>(text.length())};
}

}  // namespace

ovrant_ustring::ovrant_ustring() = default;
ovrant_ustring::ovrant_ustring(const char* utf8)
    : units_(QString::fromUtf8(utf8).toStdU16String()) {}
ovrant_ustring::ovrant_ustring(const char* utf8, unsigned long length)
    : units_(QString::fromUtf8(utf8, static_cast<qsizetype>(length)).toStdU16String()) {}
ovrant_ustring::ovrant_ustring(const wchar_t* wide)
    : units_(QString::fromWCharArray(wide).toStdU16String()) {}
ovrant_ustring::ovrant_ustring(const ovrant_ustring& other) = default;
ovrant_ustring::~ovrant_ustring() = default;

ovrant_ustring& ovrant_ustring::operator=(const ovrant_ustring& other) = default;
ovrant_ustring& ovrant_ustring::operator=(const char* utf8) {
  assign_utf8(utf8);
  return *this;
}
ovrant_ustring& ovrant_ustring::assign_utf8(const char* utf8) {
  *this = ovrant_ustring(utf8);
  return *this;
}
ovrant_ustring& ovrant_ustring::operator+=(const ovrant_ustring& other) {
  units_ += other.units_;
  return *this;
}

std::string ovrant_ustring::utf8() const { return ViewOf(*this).toUtf8().toStdString(); }

bool ovrant_ustring::empty() const { return units_.empty(); }
unsigned long ovrant_ustring::length() const { return units_.size(); }
void ovrant_ustring::clear() { units_.clear(); }
char16_t ovrant_ustring::at(unsigned long index) const { return units_[index]; }

unsigned long ovrant_ustring::find(const ovrant_ustring& text, unsigned long start) const {
  return units_.find(text.units_, start);
}

ovrant_ustring ovrant_ustring::Left(int count) const { return Mid(0, count); }

ovrant_ustring ovrant_ustring::Mid(int start, int count) const {
  if (start < 0 || count < 0) return {};
  return ovrant_ustring(units().substr(std::min(units_.size(), static_cast<std::size_t>(start)),
                                       static_cast<std::size_t>(count)));
}

ovrant_ustring ovrant_ustring::Right(int count) const {
  const int size = static_cast<int>(units_.size());
  return Mid(std::max(0, size - count), count);
}

int ovrant_ustring::compare(const ovrant_ustring& other) const {
  return units_.compare(other.units_);
}
int ovrant_ustring::compare_nocase(const ovrant_ustring& other) const {
  return ViewOf(*this).compare(ViewOf(other), Qt::CaseInsensitive);
}

int ovrant_ustring::to_int() const { return ViewOf(*this).toInt(); }
float ovrant_ustring::to_float() const { return ViewOf(*this).toFloat(); }

void ovrant_ustring::replace_all(const ovrant_ustring& from, const ovrant_ustring& to) {
  if (from.empty()) return;
  for (std::size_t at = 0; (at = units_.find(from.units_, at)) != std::u16string::npos;
       at += to.units_.size()) {
    units_.replace(at, from.units_.size(), to.units_);
  }
}

std::vector<ovrant_ustring> ovrant_ustring::TokenizeToVector(
    const ovrant_ustring& delimiters) const {
  std::vector<ovrant_ustring> tokens;
  std::size_t begin = 0;
  for (std::size_t end = 0; end != std::u16string::npos; begin = end + 1) {
    end = units_.find_first_of(delimiters.units_, begin);
    tokens.emplace_back(units().substr(begin, end - begin));
  }
  return tokens;
}

// The library formats one number, with "%i".
void ovrant_ustring::FormatArguments(const ovrant_ustring& format, const FormatArgument* args,
                                     std::size_t count) {
  *this = format;
  if (count == 0) return;
  replace_all("%i", ovrant_ustring(QString::number(args[0].as_signed()).toStdString()));
}

ovrant_ustring GetFileName(const ovrant_ustring& path, bool with_extension) {
  const QString name = ViewOf(path).toString().section('/', -1);
  return ovrant_ustring((with_extension ? name : name.section('.', 0, -2)).toStdU16String());
}

}  // namespace ovrant::utils
