// SPDX-License-Identifier: MIT
// Builds the body and the headers of an upload.

#ifndef COMMON_STOWRAAPI_CONTENT_MULTIPART_UPLOAD_H_
#define COMMON_STOWRAAPI_CONTENT_MULTIPART_UPLOAD_H_

#include <map>
#include <sstream>
#include <string>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {
struct UploadFile;
}  // namespace ovrant::stowraapiclient

// A host uploads a file with one POST of multipart/form-data (RFC 7578) to the file's upload URL.
// It takes a boundary, writes the body, makes the headers for the body's length, and sends both.
// std::bad_alloc leaves everything as it was.
namespace ovrant::stowraapiclient::multipartupload {

// "BrevixClient" and 16 decimal digits. The clock's second seeds the digits, so two boundaries made
// in one second are equal. Reseeds Random. Safe from any thread, but concurrent calls may draw from
// each other's digits.
STOWRA_EXPORT std::string GetBoundaryString();

// Appends the body to `*out`. Neither `file` nor `out` may be null; `data` may be null if `length`
// is 0. The parts, in order:
//   - "name": the parameter "name" of the upload URL.
//   - "subjectId": `subject_id` up to its first NUL.
//   - "subjectClass": "entity".
//   - "binary": the `length` bytes at `data`. The file name is the last component of
//     zipped_file_path_ if the file is zipped, else of file_path_. The content type is the URL's
//     parameter "type".
//   - "task" and "priority": the URL's parameters, if they are there and not empty.
//   - "isZipped": "true", if the file is zipped.
//
// Escapes and decodes nothing. The server misreads a body if a file name or value holds a quotation
// mark or a line end, or if the data holds the boundary. A failed write shows in the stream's
// state.
STOWRA_EXPORT void SetupPayload(const ovrant::utils::ovrant_ustring& subject_id,
                                const UploadFile* file, const unsigned char* data,
                                unsigned long length, const std::string& boundary,
                                std::stringstream* out);

// The request headers Content-Length, Content-Type and Proxy-Connection for a body of
// `content_length` bytes. The boundary stands unquoted and whole in Content-Type. The length is
// written as a signed 32-bit number, which is wrong from 2 GiB on. InternetData replaces it by the
// right one.
STOWRA_EXPORT std::map<ovrant::utils::ovrant_ustring, ovrant::utils::ovrant_ustring>
CreateHeaderDictionary(const std::string& boundary, unsigned long content_length);

}  // namespace ovrant::stowraapiclient::multipartupload

#endif  // COMMON_STOWRAAPI_CONTENT_MULTIPART_UPLOAD_H_
