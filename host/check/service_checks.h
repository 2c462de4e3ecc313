// SPDX-License-Identifier: MIT
// Explain what the library makes of the responses in JSON.

#ifndef HOST_CHECK_SERVICE_CHECKS_H_
#define HOST_CHECK_SERVICE_CHECKS_H_

#include <string>

#include "host/check/check_report.h"

namespace stowra {

CheckReport CheckUserInfo(const std::string& text);
CheckReport CheckUpdate(const std::string& text);
CheckReport CheckExtensions(const std::string& text);

}  // namespace stowra

#endif  // HOST_CHECK_SERVICE_CHECKS_H_
