// SPDX-License-Identifier: MIT
// Two windows ask the same service at the same time, each with an object of its own. Objects of one
// class share their notification names, so each would hear the end of both transfers. Names of its
// own keep a window to its own transfer. The hooks also tell of a failure, for which UserInfoQuery
// posts nothing.
//
// Run:
//   stowra-emulator --port 8080
//   11_two_windows http://127.0.0.1:8080
//
// Prints:
//   left: Zoë Ångström
//   right: failed

#include <iostream>
#include <string>

#include "common_stowraapi/common_stowraapi.h"
#include "main_queue.h"

using ovrant::webservices::UserInfoQuery;

// A window and its request.
class Window : public UserInfoQuery {
 public:
  // Both names must outlive the window.
  Window(const char* returned, const char* failed) {
    RemoveNotifications();
    returned_notification_ = returned;
    failed_notification_ = failed;
    AddNotifications();
  }
  // No hook runs after this.
  ~Window() override { RemoveNotifications(); }

  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void OnAsyncResponseSuccess() override {
    UserInfoQuery::OnAsyncResponseSuccess();  // posts "UserInfoUpdated" to the rest of the host
    End(GetUserInfoValue(kUserDisplayNameKey).utf8());
  }
  void OnAsyncResponseFail() override { End("failed"); }

  const bool& done() const { return done_; }
  const std::string& text() const { return text_; }

 private:
  void End(const std::string& text) {
    text_ = text;
    done_ = true;
  }

  bool done_ = false;
  std::string text_;
};

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  MainQueue queue;
  Window left("LeftWindowReturned", "LeftWindowFailed");
  Window right("RightWindowReturned", "RightWindowFailed");
  left.Init((service + "/user-info").c_str(), nullptr);
  right.Init((service + "/user-info?fault=truncate").c_str(), nullptr);
  left.AsynchronousRequest();
  right.AsynchronousRequest();
  queue.RunUntil(left.done());
  queue.RunUntil(right.done());
  std::cout << "left: " << left.text() << "\nright: " << right.text() << '\n';
}
