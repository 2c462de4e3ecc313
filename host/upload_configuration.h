// SPDX-License-Identifier: MIT
// Fetches an upload configuration.

#ifndef HOST_UPLOAD_CONFIGURATION_H_
#define HOST_UPLOAD_CONFIGURATION_H_

#include <string>

#include "common_stowraapi/content/upload_config.h"
#include "host/exit_status.h"
#include "host/session.h"

namespace stowra {

// Returns kDone with the configuration in `config`. Otherwise prints the failure to stderr.
ExitStatus AskForUploadConfig(const Session& session, const std::string& url,
                              ovrant::stowraapiclient::UploadConfig& config);

}  // namespace stowra

#endif  // HOST_UPLOAD_CONFIGURATION_H_
