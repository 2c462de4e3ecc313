// A model as a client sends it.

#ifndef EMULATOR_CONTENT_UPLOAD_FORM_H_
#define EMULATOR_CONTENT_UPLOAD_FORM_H_

#include <httplib.h>

#include <string>
#include <string_view>

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
  std::string_view bytes;  // They stay in the request.
};

// Reads the parts of the request's body. Throws RequestError, status 400, when it is no multipart
// form or has too few parts or too many.
UploadForm ReadUploadForm(const httplib::Request& request);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_UPLOAD_FORM_H_
