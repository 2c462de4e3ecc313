// SPDX-License-Identifier: MIT
// The header fields of a response.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Keeps the lines as they came. The map is made on request, because few callers read it.
class HeaderFields {
 public:
  bool empty() const { return lines_.empty(); }

  // Adds the next line. It must not be empty, and a line feed may only be its last character.
  void AddLine(std::string_view line);

  // Makes a map by these rules:
  //
  //   - Names are spelt as they came.
  //   - Values of a repeated name are joined by ", ".
  //   - A line that begins with a blank continues the value before it, after a space.
  //   - A line without a colon is left out.
  ovrant::utils::StringMap ToMap() const;

 private:
  std::string lines_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_FIELDS_H_
