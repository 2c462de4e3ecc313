// SPDX-License-Identifier: MIT
#include "tests/support/notification_recorder.h"

#include <utility>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/support/event.h"

namespace stowra_test {

NotificationRecorder::NotificationRecorder(std::initializer_list<const char*> names,
                                           std::function<void()> on_notification)
    : on_notification_(std::move(on_notification)) {
  for (const char* name : names) CNotificationCenter::Default()->AddObserver(name, this);
}

NotificationRecorder::~NotificationRecorder() {
  CNotificationCenter::Default()->RemoveObserver(this);
}

void NotificationRecorder::OnNotification(const char* name, void* payload) {
  if (on_notification_) on_notification_();
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.push_back({name, payload, std::this_thread::get_id()});
  changed_.notify_all();
}

bool NotificationRecorder::WaitFor(std::size_t count) {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, kPatience, [this, count] { return entries_.size() >= count; });
}

std::vector<NotificationRecorder::Entry> NotificationRecorder::entries() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return entries_;
}

std::vector<std::string> NotificationRecorder::names() {
  std::vector<std::string> names;
  for (const Entry& entry : entries()) names.push_back(entry.name);
  return names;
}

}  // namespace stowra_test
