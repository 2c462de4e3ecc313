// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notification_center.h"

#include "common_stowraapi/platform/notify/registry.h"

CNotificationCenter* CNotificationCenter::Default() {
  static auto* const center = new CNotificationCenter;
  return center;
}

CNotificationCenter::CNotificationCenter()
    : registry_(std::make_unique<ovrant::NotificationRegistry>()) {}
CNotificationCenter::~CNotificationCenter() = default;

void CNotificationCenter::AddObserver(const char* name, ovrant::IObserver* observer) {
  if (name != nullptr && observer != nullptr) registry_->Add(name, observer);
}

void CNotificationCenter::RemoveObserver(ovrant::IObserver* observer) {
  if (observer != nullptr) registry_->Remove(observer);
}

void CNotificationCenter::SendNotification(const char* name, void* payload) {
  if (name != nullptr) registry_->Send(name, payload);
}
