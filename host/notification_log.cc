// SPDX-License-Identifier: MIT
#include "host/notification_log.h"

#include <algorithm>

#include "common_stowraapi/platform/notification_center.h"
#include "host/terminal.h"

namespace stowra {

NotificationLog::NotificationLog(const std::vector<const char*>& names, bool verbose)
    : verbose_(verbose) {
  for (const char* name : names) CNotificationCenter::Default()->AddObserver(name, this);
}

NotificationLog::~NotificationLog() { CNotificationCenter::Default()->RemoveObserver(this); }

bool NotificationLog::HasArrived(const char* name) const {
  return std::find(arrived_.begin(), arrived_.end(), name) != arrived_.end();
}

void NotificationLog::OnNotification(const char* name, void* /*payload*/) {
  arrived_.emplace_back(name);
  if (verbose_) Note(std::string("notification ") + name);
}

}  // namespace stowra
