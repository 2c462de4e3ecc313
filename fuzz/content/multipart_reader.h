// SPDX-License-Identifier: MIT
// A reader of multipart/form-data bodies (RFC 7578, RFC 2046).

#ifndef FUZZ_CONTENT_MULTIPART_READER_H_
#define FUZZ_CONTENT_MULTIPART_READER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_fuzz {

struct FormPart {
  std::string name;
  std::optional<std::string> file_name;
  std::optional<std::string> type;
  std::string content;
};

bool operator==(const FormPart& a, const FormPart& b);

// The parts between the first boundary line and the closing one, in order. Nothing if the body is
// not of that form. A quoted name ends at the next quotation mark.
std::optional<std::vector<FormPart>> ReadMultipart(std::string_view body,
                                                   const std::string& boundary);

// Whether RFC 2046 allows the boundary: up to 70 of its characters, the last one not a space.
bool IsBoundary(std::string_view text);

}  // namespace stowra_fuzz

#endif  // FUZZ_CONTENT_MULTIPART_READER_H_
