// The header fields of a response.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Keeps the lines as they came. Few transfers are asked for them, so the map is made for those
// alone.
class HeaderFields {
 public:
  bool empty() const { return lines_.empty(); }

  // Takes the next line, which is not empty and holds no line feed but at its end.
  void AddLine(std::string_view line);

  // Names as they were spelt; the values of a repeated one joined by ", ". A line that begins with
  // a blank continues the value before it, behind a space. What has no colon is left out.
  ovrant::utils::StringMap ToMap() const;

 private:
  std::string lines_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_
