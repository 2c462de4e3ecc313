// SPDX-License-Identifier: MIT
// Records which notifications have arrived.

#ifndef HOST_NOTIFICATION_LOG_H_
#define HOST_NOTIFICATION_LOG_H_

#include <string>
#include <vector>

#include "common_stowraapi/platform/observer.h"

namespace stowra {

// Observes notifications while it lives. For one thread, on which they are also posted.
class NotificationLog : public ovrant::IObserver {
 public:
  // With `verbose`, prints a line to stderr for each notification.
  NotificationLog(const std::vector<const char*>& names, bool verbose);
  ~NotificationLog() override;

  NotificationLog(const NotificationLog&) = delete;
  NotificationLog& operator=(const NotificationLog&) = delete;

  // Since the last Forget.
  bool HasArrived(const char* name) const;
  void Forget() { arrived_.clear(); }

  void OnNotification(const char* name, void* payload) override;
  using IObserver::OnNotification;

 private:
  const bool verbose_;
  std::vector<std::string> arrived_;
};

}  // namespace stowra

#endif  // HOST_NOTIFICATION_LOG_H_
