// SPDX-License-Identifier: MIT
// A plugin of a host that uses the platform library.

#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/platform/http/exit_child.h"

namespace {

// Objects that a host forgets to delete before it unloads the plugin.
struct Forgotten {
  explicit Forgotten(const char* name) : delegate(nullptr, 1, name, 2, name) {}

  ovrant::internet::InternetDataDelegate delegate;
  std::vector<ovrant::internet::InternetData*> transports;
};

}  // namespace

// The transfers post `name`. Returns an object that the caller must keep, or null.
extern "C" __attribute__((visibility("default"))) void* StartTransfers(const char* url,
                                                                       const char* name) {
  auto* const forgotten = new Forgotten(name);
  for (int i = 0; i < stowra_test::kExitChildTransfers; ++i) {
    forgotten->transports.push_back(new ovrant::internet::InternetData(url));
    if (!forgotten->transports.back()->DownloadWithDelegate(&forgotten->delegate, nullptr)) {
      return nullptr;
    }
  }
  return forgotten;
}
