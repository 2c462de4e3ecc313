// SPDX-License-Identifier: MIT
// The parts that a parser found in a body.

#ifndef TESTS_MULTIPART_PART_H_
#define TESTS_MULTIPART_PART_H_

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_test {

// One part. An optional field is absent if the part lacks it or the parser does not report it.
struct Part {
  std::string name;
  std::optional<std::string> file_name;
  std::optional<std::string> type;         // Content-Type
  std::optional<std::string> disposition;  // Content-Disposition, whole
  std::string content;
};

bool operator==(const Part& a, const Part& b);
std::ostream& operator<<(std::ostream& out, const Part& part);

// The parts of a body, or the parser's error text.
struct Reading {
  std::string error;
  std::vector<Part> parts;
};

// Encodes a reading as bytes, or decodes it. A number is four bytes, most significant first. A text
// is its length and its bytes. An absent text is the length 0xFFFFFFFF. Decode fails the current
// test if the bytes are malformed.
std::string Encode(const Reading& reading);
Reading Decode(std::string_view bytes);

// Single values in that format.
std::string EncodeNumber(std::size_t number);
std::string EncodeText(std::string_view text);
std::size_t DecodeNumber(std::string_view bytes);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_PART_H_
