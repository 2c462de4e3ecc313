// SPDX-License-Identifier: MIT
// The form with which a client uploads a model.

#ifndef EMULATOR_CONTENT_UPLOAD_FORM_H_
#define EMULATOR_CONTENT_UPLOAD_FORM_H_

#include <httplib.h>

#include <memory>
#include <string>

#include "emulator/request_body.h"

namespace stowra_emulator {

struct UploadForm {
  std::string name;
  std::string subject_id;
  std::string subject_class;
  std::string file_name;
  std::string content_type;
  std::string task;
  std::string priority;
  bool is_zipped = false;
  std::shared_ptr<SpooledFile> file;  // Never null.
};

// Reads the parts of the request's body. Throws a RequestError with status 400 if it is no
// multipart form, or a part is missing, repeated or invalid.
UploadForm ReadUploadForm(const httplib::Request& request, const RequestBody& body);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_UPLOAD_FORM_H_
