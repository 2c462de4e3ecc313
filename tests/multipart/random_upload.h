// SPDX-License-Identifier: MIT
// Makes random uploads.

#ifndef TESTS_MULTIPART_RANDOM_UPLOAD_H_
#define TESTS_MULTIPART_RANDOM_UPLOAD_H_

#include <cstdint>
#include <string>
#include <vector>

#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/multipart/part.h"

namespace stowra_test {

// The input of a body, and the parts that a parser must find in it.
struct RandomUpload {
  ovrant::utils::ovrant_ustring subject_id;
  ovrant::stowraapiclient::UploadFile file;
  std::string data;
  std::string boundary;
  std::vector<Part> parts;
};

// How many uploads a test makes. The environment variable STOWRA_MULTIPART_BODIES asks for more.
std::uint32_t CountBodies(std::uint32_t usual);

// One number always gives the same upload, except for boundaries that come from the clock. The
// upload has no text that a body cannot carry. Names and values have no quotation marks and no line
// ends. The boundary occurs nowhere. A content type has no white space at its ends, because parsers
// drop it from a header value (RFC 9110, 5.5).
RandomUpload MakeRandomUpload(std::uint32_t number);

// The body and the headers that the library builds from the upload.
struct BuiltUpload {
  std::string body;
  ovrant::utils::StringMap headers;

  std::string ContentType() const;
};
BuiltUpload Build(const RandomUpload& upload);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_RANDOM_UPLOAD_H_
