// SPDX-License-Identifier: MIT
// Hears how update requests end.

#ifndef EXAMPLES_UPDATE_OBSERVER_H_
#define EXAMPLES_UPDATE_OBSERVER_H_

#include <cstring>
#include <functional>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"

// While it lives, calls `end` for each update request that ends. The call runs on the thread that
// posts the notification.
class UpdateObserver : public ovrant::IObserver {
 public:
  explicit UpdateObserver(std::function<void(bool succeeded)> end) : end_(std::move(end)) {
    CNotificationCenter* const center = CNotificationCenter::Default();
    center->AddObserver(UpdateQuery::kUpdateQuerySucceededNotification, this);
    center->AddObserver(UpdateQuery::kUpdateQueryFailedNotification, this);
  }
  ~UpdateObserver() override { CNotificationCenter::Default()->RemoveObserver(this); }

  UpdateObserver(const UpdateObserver&) = delete;
  UpdateObserver& operator=(const UpdateObserver&) = delete;

  // Names are compared by content.
  using IObserver::OnNotification;
  void OnNotification(const char* name, void*) override {
    end_(std::strcmp(name, UpdateQuery::kUpdateQuerySucceededNotification) == 0);
  }

 private:
  using UpdateQuery = ovrant::webservices::UpdateQuery;

  const std::function<void(bool succeeded)> end_;
};

#endif  // EXAMPLES_UPDATE_OBSERVER_H_
