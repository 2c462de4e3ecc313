// SPDX-License-Identifier: MIT
// Explains what the library makes of an upload configuration.

#ifndef HOST_CHECK_UPLOAD_CONFIG_CHECK_H_
#define HOST_CHECK_UPLOAD_CONFIG_CHECK_H_

#include <string>

#include "host/check/check_report.h"

namespace stowra {

CheckReport CheckUploadConfig(std::string document);

}  // namespace stowra

#endif  // HOST_CHECK_UPLOAD_CONFIG_CHECK_H_
