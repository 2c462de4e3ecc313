// What a parser has found in a body.

#ifndef TESTS_MULTIPART_PART_H_
#define TESTS_MULTIPART_PART_H_

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_test {

// One part. What is absent here is a header, or a parameter of one, that the part does not have, or
// that the parser does not tell apart from an empty one.
struct Part {
  std::string name;
  std::optional<std::string> file_name;
  std::optional<std::string> type;         // Content-Type
  std::optional<std::string> disposition;  // Content-Disposition, whole
  std::string content;
};

bool operator==(const Part& a, const Part& b);
std::ostream& operator<<(std::ostream& out, const Part& part);

// A body, or the parser's words about why it is none.
struct Reading {
  std::string error;
  std::vector<Part> parts;
};

// A reading as bytes, and back. Numbers are four bytes, the highest first; a text is its length and
// its bytes, an absent one the length 0xFFFFFFFF. Decode fails the current test when the
// bytes are no reading.
std::string Encode(const Reading& reading);
Reading Decode(std::string_view bytes);

// A number and a text in that form.
std::string EncodeNumber(std::size_t number);
std::string EncodeText(std::string_view text);
std::size_t DecodeNumber(std::string_view bytes);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_PART_H_
