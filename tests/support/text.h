// SPDX-License-Identifier: MIT
// Texts for tests.

#ifndef TESTS_SUPPORT_TEXT_H_
#define TESTS_SUPPORT_TEXT_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {

// How GoogleTest shows a string.
inline void PrintTo(const ovrant_ustring& text, std::ostream* out) {
  *out << '"' << text.utf8() << '"';
}

}  // namespace ovrant::utils

namespace stowra_test {

// `utf8` with its NULs.
inline ovrant::utils::ovrant_ustring Text(std::string_view utf8) {
  return ovrant::utils::ovrant_ustring(utf8.data(), utf8.size());
}

// Any code units, lone surrogates included, and those of a string.
inline ovrant::utils::ovrant_ustring TextOf(std::u16string_view units) {
  return ovrant::utils::ovrant_ustring(units);
}
inline std::u16string UnitsOf(const ovrant::utils::ovrant_ustring& text) {
  return std::u16string(text.units());
}

inline std::string Repeated(std::string_view text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

// `before` number `after`, for each number from `begin` up to `end`.
inline std::string Numbered(int begin, int end, const std::string& before,
                            const std::string& after) {
  std::string all;
  for (int i = begin; i < end; ++i) all += before + std::to_string(i) + after;
  return all;
}

// The items of a list, which "|" separates.
inline std::vector<std::string> Split(std::string_view list) {
  std::vector<std::string> items;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find('|', begin), list.size());
    items.emplace_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return items;
}

// Without white space around it.
inline std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Bytes in a block of exactly their size, so that a sanitizer sees a read behind them. Not const,
// for functions that take such a pointer though they only read.
class Bytes {
 public:
  explicit Bytes(std::string_view text) : bytes_(text.begin(), text.end()) {}

  unsigned char* data() { return bytes_.data(); }
  unsigned long size() const { return bytes_.size(); }
  int length() const { return static_cast<int>(bytes_.size()); }

 private:
  std::vector<unsigned char> bytes_;
};

// Names each test of a table by the member `name` of its row.
struct RowName {
  template <typename Row>
  std::string operator()(const testing::TestParamInfo<Row>& info) const {
    return info.param.name;
  }
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_TEXT_H_
