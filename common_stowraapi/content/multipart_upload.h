// The body and the headers of an upload.

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

// A file goes to the content service as one POST of multipart/form-data (RFC 7578) to its upload
// URL: take a boundary, write the body, make the headers for the body's length, send.
namespace ovrant::stowraapiclient::multipartupload {

// "BrevixClient" and 16 decimal digits. They come from the clock: two boundaries made within one
// second are the same. Reseeds Random; safe from any thread, though calls at the same time share
// the digits between them.
STOWRA_EXPORT std::string GetBoundaryString();

// Appends the body to `*out`: the parts "name", "subjectId", "subjectClass" and "binary", and where
// they apply "task", "priority" and "isZipped". The values of "name", "task" and "priority" and the
// content type of the file are those of the parameters "name", "type", "task" and "priority" of the
// upload URL, as they stand there. The file is called after the last part of zipped_file_path_ or
// file_path_, and its content is the `length` bytes at `data`.
//
// Nothing is escaped: a quotation mark or a line end in a file name or a value, or the boundary in
// the data, gives a body that does not read back as it was meant. `subject_id` ends at its first
// NUL. A failed write shows in the stream's state.
STOWRA_EXPORT void SetupPayload(const ovrant::utils::ovrant_ustring& subject_id,
                                const UploadFile* file, const unsigned char* data,
                                unsigned long length, const std::string& boundary,
                                std::stringstream* out);

// The request headers for a body of `content_length` bytes: Content-Length, Content-Type and
// Proxy-Connection. The length is written as a signed number of 32 bits: from 2 GiB on it is wrong.
STOWRA_EXPORT std::map<ovrant::utils::ovrant_ustring, ovrant::utils::ovrant_ustring>
CreateHeaderDictionary(const std::string& boundary, unsigned long content_length);

}  // namespace ovrant::stowraapiclient::multipartupload

#endif  // COMMON_STOWRAAPI_CONTENT_MULTIPART_UPLOAD_H_
