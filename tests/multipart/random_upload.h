// Uploads made up by chance.

#ifndef TESTS_MULTIPART_RANDOM_UPLOAD_H_
#define TESTS_MULTIPART_RANDOM_UPLOAD_H_

#include <cstdint>
#include <string>
#include <vector>

#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/multipart/part.h"

namespace stowra_test {

// What goes into a body, and what must come out of it.
struct RandomUpload {
  ovrant::utils::ovrant_ustring subject_id;
  ovrant::stowraapiclient::UploadFile file;
  std::string data;
  std::string boundary;
  std::vector<Part> parts;
};

// The same number gives the same upload, but for boundaries taken from the clock. It has nothing
// that a body cannot carry: quotation marks and line ends in names and values, the boundary
// anywhere, and blanks at the ends of a content type, which do not belong to a header's value
// (RFC 9110, 5.5).
RandomUpload MakeRandomUpload(std::uint32_t number);

// The body and the value of Content-Type that the library makes of it.
struct BuiltUpload {
  std::string body;
  ovrant::utils::StringMap headers;

  std::string ContentType() const;
};
BuiltUpload Build(const RandomUpload& upload);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_RANDOM_UPLOAD_H_
