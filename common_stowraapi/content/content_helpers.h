// SPDX-License-Identifier: MIT
// Reads names from the content service's URLs and headers.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// The content id: the text from the first "mid=", wherever it stands, to the next "&" or the end.
// Empty without "mid=". May throw std::bad_alloc.
STOWRA_EXPORT ovrant::utils::ovrant_ustring GetStowraIdFromUrl(
    const ovrant::utils::ovrant_ustring& url);

// The name of a downloaded model file, without its extension, from the value of a header
// Content-Disposition (RFC 6266).
//
// The name begins after the first `filename="`, or after the first `filename=` if no quotation mark
// follows one. It ends before the first ".qmf" in the whole value, or the first ".kmz" if there is
// no ".qmf". Empty if either is missing or the extension stands before the name. The server chooses
// the text, so it may hold path separators. May throw std::bad_alloc.
STOWRA_EXPORT ovrant::utils::ovrant_ustring GetFilenameFromContentDisposition(
    const ovrant::utils::ovrant_ustring& header);

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_
