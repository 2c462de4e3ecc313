// SPDX-License-Identifier: MIT
// Chooses the name of a downloaded file.

#ifndef HOST_DOWNLOAD_NAME_H_
#define HOST_DOWNLOAD_NAME_H_

#include <string>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// The name in a Content-Disposition header (RFC 6266) with its extension, such as "chair.qmf" or
// "chair.qmf.zip". Without a safe name there, the last part of the path in `url`. Without a safe
// name there either, "download". A safe name holds no folder, is printable, is at most 255 bytes
// long, and begins with neither '.' nor '-'.
std::string ChooseFileName(const ovrant::utils::ovrant_ustring& content_disposition,
                           const std::string& url);

}  // namespace stowra

#endif  // HOST_DOWNLOAD_NAME_H_
