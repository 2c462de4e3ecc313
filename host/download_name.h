// What a downloaded file is called.

#ifndef HOST_DOWNLOAD_NAME_H_
#define HOST_DOWNLOAD_NAME_H_

#include <string>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// The name that a Content-Disposition header (RFC 6266) gives, extension included, as "chair.qmf",
// "chair.qmf.zip" or "chair.zip"; otherwise the last part of the path in `url`, or "download". Both
// come from outside, so whatever they say the result is the name of a file in the current folder:
// no path, not hidden, not too long, printable, and nothing that a command takes for an option.
std::string ChooseFileName(const ovrant::utils::ovrant_ustring& content_disposition,
                           const std::string& url);

}  // namespace stowra

#endif  // HOST_DOWNLOAD_NAME_H_
