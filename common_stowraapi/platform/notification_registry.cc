#include "common_stowraapi/platform/notification_registry.h"

#include <algorithm>

#include "common_stowraapi/platform/delivery_scope.h"

namespace ovrant {

namespace {

// Undoes its work at the end of the scope, whichever way it is left.
template <typename Function>
class AtExit {
 public:
  explicit AtExit(Function function) : function_(function) {}
  ~AtExit() { function_(); }

  AtExit(const AtExit&) = delete;
  AtExit& operator=(const AtExit&) = delete;

 private:
  const Function function_;
};

}  // namespace

void NotificationRegistry::Add(const char* name, IObserver* observer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  auto found = topics_.find(name);
  if (found == topics_.end()) {
    auto topic = std::make_unique<Topic>();
    topic->name = name;
    const std::string_view key = topic->name;
    found = topics_.emplace(key, std::move(topic)).first;
  }
  Topic& topic = *found->second;
  const AtExit drop_after_failure([this, &topic] { DropIfUnused(topic); });

  std::vector<Topic*>& own_topics = topics_of_[observer];
  if (std::find(own_topics.begin(), own_topics.end(), &topic) != own_topics.end()) return;
  try {
    own_topics.push_back(&topic);
    topic.observers.push_back(observer);
  } catch (...) {
    if (!own_topics.empty() && own_topics.back() == &topic) own_topics.pop_back();
    if (own_topics.empty()) topics_of_.erase(observer);
    throw;
  }
}

void NotificationRegistry::Remove(IObserver* observer) {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto found = topics_of_.find(observer);
  if (found != topics_of_.end()) {
    for (Topic* topic : found->second) RemoveFromTopic(*topic, observer);
    topics_of_.erase(found);
  }
  if (DeliveryScope::IsInside() || !IsBeingCalled(observer)) return;
  ++waiting_removals_;
  call_ended_.wait(lock, [this, observer] { return !IsBeingCalled(observer); });
  --waiting_removals_;
}

void NotificationRegistry::Send(const char* name, void* payload) {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto found = topics_.find(name);
  if (found != topics_.end()) Deliver(*found->second, name, payload, lock);
}

void NotificationRegistry::Deliver(Topic& topic, const char* name, void* payload,
                                   std::unique_lock<std::mutex>& lock) {
  // Those added from now on stand behind this end.
  const std::size_t end = topic.observers.size();
  ++topic.deliveries;
  const AtExit end_delivery([this, &topic] { EndDelivery(topic); });
  for (std::size_t i = 0; i < end; ++i) {
    if (topic.observers[i] != nullptr) CallObserver(topic.observers[i], name, payload, lock);
  }
}

void NotificationRegistry::CallObserver(IObserver* observer, const char* name, void* payload,
                                        std::unique_lock<std::mutex>& lock) {
  Call call = {observer, calls_};
  calls_ = &call;
  const AtExit end_call([this, &call, &lock] {
    lock.lock();
    EndCall(call);
  });
  lock.unlock();
  const DeliveryScope scope;
  observer->OnNotification(name, payload);
}

void NotificationRegistry::EndDelivery(Topic& topic) {
  if (--topic.deliveries > 0 || !topic.has_gaps) return;
  topic.observers.erase(std::remove(topic.observers.begin(), topic.observers.end(), nullptr),
                        topic.observers.end());
  topic.has_gaps = false;
  DropIfUnused(topic);
}

void NotificationRegistry::EndCall(Call& call) {
  Call** link = &calls_;
  while (*link != &call) link = &(*link)->next;
  *link = call.next;
  if (waiting_removals_ > 0) call_ended_.notify_all();
}

void NotificationRegistry::RemoveFromTopic(Topic& topic, IObserver* observer) {
  const auto position = std::find(topic.observers.begin(), topic.observers.end(), observer);
  if (topic.deliveries > 0) {
    *position = nullptr;
    topic.has_gaps = true;
  } else {
    topic.observers.erase(position);
    DropIfUnused(topic);
  }
}

void NotificationRegistry::DropIfUnused(Topic& topic) {
  if (!topic.observers.empty() || topic.deliveries > 0) return;
  topics_.erase(topics_.find(topic.name));
}

bool NotificationRegistry::IsBeingCalled(const IObserver* observer) const {
  for (const Call* call = calls_; call != nullptr; call = call->next) {
    if (call->observer == observer) return true;
  }
  return false;
}

}  // namespace ovrant
