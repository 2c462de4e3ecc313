// SPDX-License-Identifier: MIT
// Makes the body of an upload.

#ifndef HOST_UPLOAD_BODY_H_
#define HOST_UPLOAD_BODY_H_

#include <string>
#include <string_view>

#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// The form as the library writes it. Holds the body in memory once, where a std::stringstream would
// grow in steps and be copied at the end.
std::string MakeUploadBody(const ovrant::utils::ovrant_ustring& subject_id,
                           const ovrant::stowraapiclient::UploadFile& file,
                           std::string_view content, const std::string& boundary);

}  // namespace stowra

#endif  // HOST_UPLOAD_BODY_H_
