// SPDX-License-Identifier: MIT
// The bytes of an upload's body that stand around the file.

#ifndef COMMON_STOWRAAPI_CONTENT_PAYLOAD_FRAME_H_
#define COMMON_STOWRAAPI_CONTENT_PAYLOAD_FRAME_H_

#include <string>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {
struct UploadFile;
}  // namespace ovrant::stowraapiclient

namespace ovrant::stowraapiclient::multipartupload {

struct PayloadFrame {
  std::string before;
  std::string after;
};

// The parameters are those of SetupPayload. Throws std::bad_alloc when memory runs out.
PayloadFrame MakePayloadFrame(const utils::ovrant_ustring& subject_id, const UploadFile& file,
                              const std::string& boundary);

}  // namespace ovrant::stowraapiclient::multipartupload

#endif  // COMMON_STOWRAAPI_CONTENT_PAYLOAD_FRAME_H_
