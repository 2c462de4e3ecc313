// SPDX-License-Identifier: MIT
// What a host sets up for its requests.

#ifndef HOST_SESSION_H_
#define HOST_SESSION_H_

#include <functional>
#include <string>
#include <vector>

#include "host/exit_status.h"
#include "host/main_loop.h"
#include "host/notification_log.h"
#include "host/request_options.h"
#include "host/transfer_log.h"

namespace stowra {

// The library's process-wide settings and listeners for one command. Belongs to the main thread and
// must outlive the requests that it runs. One at a time in a process.
class Session {
 public:
  // Observes the notifications of these names. `options` must outlive the session.
  explicit Session(const RequestOptions& options,
                   const std::vector<const char*>& notifications = {});

  // If stderr is a terminal, shows the progress of later transfers there.
  void ShowProgress() { transfers_.ShowProgress(); }

  // Erases the progress and shows no more.
  void HideProgress() { transfers_.HideProgress(); }

  // Lets RunInBackground return before its transfer has ended. Any thread.
  void Interrupt() {
    loop_.Post([] {});
  }

  // Calls `start`, which starts one background transfer, and runs its completion on this thread.
  // Returns whether the observed notification `success` has arrived. Not every service posts a
  // notification when it fails.
  bool RunInBackground(const std::function<void()>& start, const char* success);

  // Prints to stderr why the last request failed: the transfer's error, or an HTTP status other
  // than 200 with the server's `message`, if any. If both were good, prints `unusable`, which says
  // what is wrong with the response.
  ExitStatus Fail(const std::string& unusable, const std::string& message = {}) const;

 private:
  const RequestOptions& options_;
  MainLoop loop_;
  TransferLog transfers_;
  NotificationLog notifications_;
};

}  // namespace stowra

#endif  // HOST_SESSION_H_
