// SPDX-License-Identifier: MIT
// The body of a request.

#ifndef EMULATOR_REQUEST_BODY_H_
#define EMULATOR_REQUEST_BODY_H_

#include <httplib.h>

#include <map>
#include <memory>
#include <string>

#include "emulator/limits.h"
#include "emulator/spooled_file.h"

namespace stowra_emulator {

struct FormPart {
  std::string content_type;
  std::string file_name;
  std::string text;                   // Of a part without a file name.
  std::shared_ptr<SpooledFile> file;  // Of a part with one.
};

struct RequestBody {
  std::string text;  // Inflated. Empty for a multipart form.
  std::multimap<std::string, FormPart> form;
};

enum class BodyResult { kRead, kTooLarge, kMalformed };

// Reads the body with the engine's reader. Files of a form go to `folder`, everything else stays in
// memory. Throws std::system_error if a file cannot be written. Unless the result is kRead, the
// rest of the body is unread and `body` is incomplete.
BodyResult ReadBody(const httplib::Request& request, const httplib::ContentReader& reader,
                    const Limits& limits, const std::string& folder, RequestBody& body);

}  // namespace stowra_emulator

#endif  // EMULATOR_REQUEST_BODY_H_
