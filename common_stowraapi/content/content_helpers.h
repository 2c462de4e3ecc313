// Names out of the content service's URLs and headers.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// What stands between the first "mid=", wherever that is, and the next "&" or the end; empty if
// there is none.
STOWRA_EXPORT ovrant::utils::ovrant_ustring GetStowraIdFromUrl(
    const ovrant::utils::ovrant_ustring& url);

// The name of a downloaded model file, without its extension, from the value of the header
// Content-Disposition (RFC 6266): what stands between the first "filename=", with the quotation
// mark behind it if one such has it, and the first ".qmf" of the whole value, or the first ".kmz"
// of one without ".qmf". Empty when one of the two is missing, or the extension stands first. The
// text is the server's: it may hold separators of paths.
STOWRA_EXPORT ovrant::utils::ovrant_ustring GetFilenameFromContentDisposition(
    const ovrant::utils::ovrant_ustring& header);

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_HELPERS_H_
