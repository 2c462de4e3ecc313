// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notify/registry.h"

#include "common_stowraapi/platform/notify/delivery.h"

namespace ovrant {

void NotificationRegistry::Add(const char* name, IObserver* observer) {
  const auto lock = Delivery::Lock();
  auto found = topics_.find(name);
  if (found == topics_.end()) {
    const auto topic = std::make_shared<Topic>();
    topic->name = name;
    found = topics_.emplace(topic->name, topic).first;
  }
  Topic& topic = *found->second;
  const Serial serial = last_serial_ + 1;
  try {
    if (!registrations_.try_emplace({observer, &topic}, serial).second) return;
    topic.observers.emplace_hint(topic.observers.end(), serial, observer);
    last_serial_ = serial;
  } catch (...) {
    registrations_.erase({observer, &topic});
    DropIfUnused(topic);
    throw;
  }
}

void NotificationRegistry::Remove(IObserver* observer) {
  auto lock = Delivery::Lock();
  auto registration = registrations_.lower_bound({observer, nullptr});
  while (registration != registrations_.end() && registration->first.first == observer) {
    Topic& topic = *registration->first.second;
    topic.observers.erase(registration->second);
    registration = registrations_.erase(registration);
    DropIfUnused(topic);
  }
  Delivery::WaitForOthers(observer, lock);
}

void NotificationRegistry::Send(const char* name, void* payload) {
  auto lock = Delivery::Lock();
  const auto found = topics_.find(name);
  if (found == topics_.end()) return;
  // An observer may remove the last registration, which drops the topic from the table.
  const std::shared_ptr<const Topic> topic = found->second;
  const Serial last = last_serial_;
  auto next = topic->observers.begin();
  while (next != topic->observers.end() && next->first <= last) {
    const auto [serial, observer] = *next;
    {
      const Delivery call(observer, lock);
      observer->OnNotification(name, payload);
    }
    next = topic->observers.upper_bound(serial);
  }
}

void NotificationRegistry::DropIfUnused(const Topic& topic) {
  if (topic.observers.empty()) topics_.erase(topics_.find(topic.name));
}

}  // namespace ovrant
