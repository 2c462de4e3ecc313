// SPDX-License-Identifier: MIT
#include "host/upload_configuration.h"

namespace stowra {

using ovrant::stowraapiclient::UploadConfig;
using ovrant::utils::ovrant_ustring;

ExitStatus AskForUploadConfig(const Session& session, const std::string& url,
                              UploadConfig& config) {
  const bool received = session.Repeat([&] {
    config.Init(ovrant_ustring(url.data(), url.size()));
    return config.SynchronousQuery();
  });
  if (received) return ExitStatus::kDone;
  return session.Fail("it is not a complete upload configuration");
}

}  // namespace stowra
