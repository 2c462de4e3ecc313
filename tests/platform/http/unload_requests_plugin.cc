// A part of a host that is loaded and unloaded, and uses the whole library.

#include "common_stowraapi/common_stowraapi.h"

namespace {

// What a host has forgotten to delete before it unloads the plugin.
struct Forgotten {
  ovrant::webservices::UserInfoQuery user_info;
  ovrant::webservices::UpdateQuery update;
  ovrant::extensionstoreapi::ExtensionStoreStatus status;
};

}  // namespace

// Gives the caller what is to be held. The requests have names of their own.
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
