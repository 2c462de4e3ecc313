// What a host sets up around its requests.

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
  // `notifications` are the public names to observe. `options` must outlive the session.
  explicit Session(const RequestOptions& options,
                   const std::vector<const char*>& notifications = {});

  // Shows on stderr, where that is a terminal, how far the transfers from now on have come.
  void ShowProgress() { transfers_.ShowProgress(); }

  // Calls `start`, which starts one background transfer, and runs its completion on this thread.
  // Returns whether the notification `success`, one of those observed, has then arrived: a failure
  // need not be posted at all.
  bool RunInBackground(const std::function<void()>& start, const char* success);

  // Says on stderr why the last request has failed: the transfer, the HTTP status with `message`,
  // what the server said of it, if anything, or, where those were good, `unusable`, what was wrong
  // with the response.
  ExitStatus Fail(const std::string& unusable, const std::string& message = {}) const;

 private:
  const RequestOptions& options_;
  MainLoop loop_;
  TransferLog transfers_;
  NotificationLog notifications_;
};

}  // namespace stowra

#endif  // HOST_SESSION_H_
