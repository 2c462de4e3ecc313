// SPDX-License-Identifier: MIT
// Chooses the name of a downloaded file.

#ifndef HOST_DOWNLOAD_NAME_H_
#define HOST_DOWNLOAD_NAME_H_

#include <string>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// The name in a Content-Disposition header (RFC 6266) with its extension, such as "chair.qmf" or
// "chair.qmf.zip". Without a safe name there, the last part of the path in `url`. Without a safe
// name there either, "download".
//
// Names lose their folders, hidden characters (WithoutHidden), and dots and spaces at the end. A
// safe name then has 1 to 255 bytes and no quotation mark. It begins with neither '.' nor '-'. It
// names no device of any system, such as "CON" or "nul.txt".
std::string ChooseFileName(const ovrant::utils::ovrant_ustring& content_disposition,
                           const std::string& url);

}  // namespace stowra

#endif  // HOST_DOWNLOAD_NAME_H_
