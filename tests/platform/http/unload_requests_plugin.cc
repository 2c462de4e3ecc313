// SPDX-License-Identifier: MIT
// A plugin of a host that uses the whole library.

#include "common_stowraapi/common_stowraapi.h"

namespace {

// Objects that a host forgets to delete before it unloads the plugin.
struct Forgotten {
  ovrant::webservices::UserInfoQuery user_info;
  ovrant::webservices::UpdateQuery update;
  ovrant::extensionstoreapi::ExtensionStoreStatus status;
};

}  // namespace

// Returns an object that the caller must keep. The requests have names of their own.
extern "C" __attribute__((visibility("default"))) void* StartTransfers(const char* url,
                                                                       const char* /*name*/) {
  auto* const forgotten = new Forgotten;
  forgotten->user_info.Init(url, nullptr);
  forgotten->user_info.AsynchronousRequest();
  forgotten->update.Init(url, nullptr);
  forgotten->update.AsynchronousRequest();
  forgotten->status.Init(url, nullptr, "{}");
  forgotten->status.AsynchronousStatus();
  return forgotten;
}
