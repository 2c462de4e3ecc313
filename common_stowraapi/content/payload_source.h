// SPDX-License-Identifier: MIT
// The body of an upload, read while it is sent.

#ifndef COMMON_STOWRAAPI_CONTENT_PAYLOAD_SOURCE_H_
#define COMMON_STOWRAAPI_CONTENT_PAYLOAD_SOURCE_H_

#include <memory>
#include <string>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/body_source.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {
struct UploadFile;
}  // namespace ovrant::stowraapiclient

namespace ovrant::stowraapiclient::multipartupload {

// The body that SetupPayload writes for the bytes of the file at `path`, which is read while the
// body is sent. The other parameters are as there. The name in the body comes from `file`, not from
// `path`. The length is known before, and InternetData::UploadFrom sends it. So unlike the
// Content-Length of CreateHeaderDictionary it is right for a body of any size.
//
// Null, with the reason in errno, when the file cannot be opened. Throws std::bad_alloc when memory
// runs out. A file that grows or shrinks while it is sent makes the upload fail.
STOWRA_EXPORT std::unique_ptr<internet::BodySource> MakePayloadSource(
    const utils::ovrant_ustring& subject_id, const UploadFile* file, const std::string& path,
    const std::string& boundary);

}  // namespace ovrant::stowraapiclient::multipartupload

#endif  // COMMON_STOWRAAPI_CONTENT_PAYLOAD_SOURCE_H_
