// SPDX-License-Identifier: MIT
// The test servers run on this machine, so the user's proxies are ignored.

#include <stdlib.h>

#include <initializer_list>

namespace stowra_test {
namespace {

[[maybe_unused]] const bool kWithoutProxies = [] {
  for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                           "no_proxy", "NO_PROXY"}) {
    unsetenv(name);
  }
  return true;
}();

}  // namespace
}  // namespace stowra_test
