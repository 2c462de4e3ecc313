#include "common_stowraapi/platform/notify/registry.h"

#include "common_stowraapi/platform/notify/delivery_scope.h"

namespace ovrant {

// A call of an observer. Lives on the caller's stack, in the registry's list of calls. Releases the
// lock for its lifetime.
class NotificationRegistry::Call {
 public:
  Call(NotificationRegistry& registry, std::unique_lock<std::mutex>& lock,
       const IObserver* observer)
      : registry_(registry), lock_(lock), observer_(observer), next_(registry.calls_) {
    registry_.calls_ = this;
    lock_.unlock();
  }
  ~Call() {
    lock_.lock();
    Call** link = &registry_.calls_;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
    registry_.call_ended_.notify_all();
  }

  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  const IObserver* observer() const { return observer_; }
  const Call* next() const { return next_; }

 private:
  NotificationRegistry& registry_;
  std::unique_lock<std::mutex>& lock_;
  const IObserver* const observer_;
  Call* next_;
  const DeliveryScope scope_;
};

void NotificationRegistry::Add(const char* name, IObserver* observer) {
  const std::lock_guard<std::mutex> lock(mutex_);
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
  std::unique_lock<std::mutex> lock(mutex_);
  auto registration = registrations_.lower_bound({observer, nullptr});
  while (registration != registrations_.end() && registration->first.first == observer) {
    Topic& topic = *registration->first.second;
    topic.observers.erase(registration->second);
    registration = registrations_.erase(registration);
    DropIfUnused(topic);
  }
  if (DeliveryScope::IsInside()) return;
  call_ended_.wait(lock, [this, observer] { return !IsBeingCalled(observer); });
}

void NotificationRegistry::Send(const char* name, void* payload) {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto found = topics_.find(name);
  if (found == topics_.end()) return;
  // An observer may remove the last registration, which drops the topic from the table.
  const std::shared_ptr<const Topic> topic = found->second;
  const Serial last = last_serial_;
  auto next = topic->observers.begin();
  while (next != topic->observers.end() && next->first <= last) {
    const auto [serial, observer] = *next;
    {
      const Call call(*this, lock, observer);
      observer->OnNotification(name, payload);
    }
    next = topic->observers.upper_bound(serial);
  }
}

void NotificationRegistry::DropIfUnused(const Topic& topic) {
  if (topic.observers.empty()) topics_.erase(topics_.find(topic.name));
}

bool NotificationRegistry::IsBeingCalled(const IObserver* observer) const {
  for (const Call* call = calls_; call != nullptr; call = call->next()) {
    if (call->observer() == observer) return true;
  }
  return false;
}

}  // namespace ovrant
