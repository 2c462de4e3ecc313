// SPDX-License-Identifier: MIT
// The part of exit_child that exits while requests run.

#include <unistd.h>

#include <cstdlib>
#include <map>

#include "common_stowraapi/common_stowraapi.h"
#include "tests/platform/http/exit_child.h"

namespace stowra_test {
namespace {

// One request of each kind.
struct Requests {
  Requests() = default;
  explicit Requests(const std::string& url) { Start(url); }

  ovrant::webservices::UserInfoQuery user_info;
  ovrant::webservices::UpdateQuery update;
  ovrant::extensionstoreapi::ExtensionStoreStatus status;

  void Start(const std::string& url) {
    user_info.Init(url.c_str(), nullptr);
    user_info.AsynchronousRequest();
    update.Init(url.c_str(), nullptr);
    update.AsynchronousRequest();
    status.Init(url.c_str(), nullptr, "{}");
    status.AsynchronousStatus();
  }
};

// Older than the library's thread, so it is destroyed after the thread has ended.
Requests old_requests;

// Never deleted, but still reachable.
Requests* held_requests = nullptr;

int Return(const std::string& url) {
  held_requests = new Requests(url);
  return WaitAndLeave();
}

int ReturnAndDestroy(const std::string& url) {
  const Requests requests(url);
  return WaitAndLeave();
}

int ReturnWithYoungStatic(const std::string& url) {
  // The library's thread exists already.
  { const Requests first(url); }
  static const Requests young(url);
  return WaitAndLeave();
}

int ReturnWithOldStatic(const std::string& url) {
  old_requests.Start(url);
  return WaitAndLeave();
}

}  // namespace

int RunWithRequests(const std::string& mode, const std::string& url) {
  const std::map<std::string, int (*)(const std::string&)> modes = {
      {"return-with-requests", Return},
      {"return-and-destroy-requests", ReturnAndDestroy},
      {"return-with-young-static-requests", ReturnWithYoungStatic},
      {"return-with-old-static-requests", ReturnWithOldStatic},
  };
  const std::map<std::string, void (*)(int)> exits = {
    {"exit-with-requests", std::exit},
    {"exit-at-once-with-requests", _exit},
#if !defined(__APPLE__)
    {"quick-exit-with-requests", std::quick_exit},
#endif
  };
  const auto found = modes.find(mode);
  if (found != modes.end()) return found->second(url);
  const auto end = exits.find(mode);
  if (end == exits.end()) return 2;
  const Requests requests(url);
  end->second(WaitAndLeave());
  return 2;
}

}  // namespace stowra_test
