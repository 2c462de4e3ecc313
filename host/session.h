// SPDX-License-Identifier: MIT
// What a host sets up for its requests.

#ifndef HOST_SESSION_H_
#define HOST_SESSION_H_

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/deadline.h"
#include "host/exit_status.h"
#include "host/failure_report.h"
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

  // Lets RunInBackground return before its transfer has ended, and ends Repeat. Any thread.
  void Interrupt() {
    is_interrupted_ = true;
    loop_.Post([] {});
  }

  // Calls `start`, which starts one background transfer, and runs its completion on this thread.
  // Returns whether the observed notification `success` has arrived. Not every service posts a
  // notification when it fails.
  bool RunInBackground(const std::function<void()>& start, const char* success);

  // Calls `attempt`, which makes one request and returns whether it succeeded. Calls it again after
  // a pause while it fails in a way that may pass, as often as --retry allows. For requests that
  // may be made twice.
  bool Repeat(const std::function<bool()>& attempt) const;

  // Reports why the last request failed: the transfer's error, or an HTTP status other than 200
  // with the server's `message`. Without one, looks for it in the response. If error and status
  // were good, prints `unusable`, which says what is wrong with the response.
  ExitStatus Fail(const std::string& unusable, const std::string& message = {}) const;

 private:
  void Describe(const ovrant::internet::TransferEvent& end, const std::string& unusable,
                const std::string& message, FailureReport& failure) const;
  void Pause(std::chrono::seconds length) const;
  [[noreturn]] void EndAtDeadline() const;

  const RequestOptions& options_;
  std::atomic<bool> is_interrupted_{false};
  MainLoop loop_;
  TransferLog transfers_;
  NotificationLog notifications_;
  std::optional<Deadline> deadline_;  // of --max-time
};

}  // namespace stowra

#endif  // HOST_SESSION_H_
