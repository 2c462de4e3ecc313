#include "common_stowraapi/platform/notify/registry.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "common_stowraapi/platform/notify/delivery_scope.h"

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

  const auto [registration, is_new] =
      registrations_.try_emplace({observer, &topic}, topic.observers.end());
  if (!is_new) return;
  try {
    registration->second = topic.observers.insert(topic.observers.end(), observer);
  } catch (...) {
    registrations_.erase(registration);
    throw;
  }
}

void NotificationRegistry::Remove(IObserver* observer) {
  std::unique_lock<std::mutex> lock(mutex_);
  auto registration = registrations_.lower_bound({observer, nullptr});
  while (registration != registrations_.end() && registration->first.first == observer) {
    RemoveFromTopic(*registration->first.second, registration->second);
    registration = registrations_.erase(registration);
  }
  if (DeliveryScope::IsInside()) return;
  ++waiting_removals_;
  call_ended_.wait(lock, [this, observer] { return !IsBeingCalled(observer); });
  --waiting_removals_;
}

void NotificationRegistry::Send(const char* name, void* payload) {
  std::unique_lock<std::mutex> lock(mutex_);
  Topic* const topic = Find(name);
  if (topic == nullptr) return;
  if (topic->observers.size() > 1) {
    Deliver(*topic, name, payload, lock);
  } else if (IObserver* const observer = topic->observers.front()) {
    // Whatever becomes of the topic meanwhile, nothing of it is needed afterwards.
    CallObserver(observer, name, payload, lock);
  }
}

NotificationRegistry::Topic* NotificationRegistry::Find(const char* name) {
  const auto address = reinterpret_cast<std::uintptr_t>(name);
  Topic*& before = found_before_[address / sizeof(void*) % found_before_.size()];
  if (before != nullptr && std::strcmp(before->name.c_str(), name) == 0) return before;
  const auto found = topics_.find(name);
  if (found == topics_.end()) return nullptr;
  before = found->second.get();
  return before;
}

void NotificationRegistry::Deliver(Topic& topic, const char* name, void* payload,
                                   std::unique_lock<std::mutex>& lock) {
  // Those added from now on stand behind this one.
  const auto last = std::prev(topic.observers.end());
  ++topic.deliveries;
  const AtExit end_delivery([this, &topic, &lock] {
    if (!lock.owns_lock()) lock.lock();
    EndDelivery(topic);
  });
  for (auto position = topic.observers.begin();; ++position) {
    if (*position != nullptr) {
      CallObserver(*position, name, payload, lock);
      lock.lock();
    }
    if (position == last) return;
  }
}

void NotificationRegistry::CallObserver(IObserver* observer, const char* name, void* payload,
                                        std::unique_lock<std::mutex>& lock) {
  Call call = {observer, nullptr, nullptr};
  BeginCall(call);
  lock.unlock();
  const AtExit end_call([this, &call] { EndCall(call); });
  const DeliveryScope scope;
  observer->OnNotification(name, payload);
}

void NotificationRegistry::EndDelivery(Topic& topic) {
  if (--topic.deliveries > 0 || !topic.has_gaps) return;
  topic.observers.remove(nullptr);
  topic.has_gaps = false;
  DropIfUnused(topic);
}

void NotificationRegistry::BeginCall(Call& call) {
  for (std::atomic<IObserver*>& slot : slots_) {
    // What the last call in the slot did is passed on with it to whoever waits for that call.
    if (slot.load(std::memory_order_acquire) == nullptr) {
      call.slot = &slot;
      slot.store(call.observer, std::memory_order_relaxed);
      return;
    }
  }
  call.next = calls_;
  calls_ = &call;
}

// Either this sees that a removal waits, or the removal sees that the slot is free: each writes
// before it reads, in one order for all threads.
void NotificationRegistry::EndCall(Call& call) {
  if (call.slot != nullptr) {
    *call.slot = nullptr;
    if (waiting_removals_ == 0) return;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  if (call.slot == nullptr) {
    Call** link = &calls_;
    while (*link != &call) link = &(*link)->next;
    *link = call.next;
  }
  if (waiting_removals_ > 0) call_ended_.notify_all();
}

void NotificationRegistry::RemoveFromTopic(Topic& topic, Observers::iterator position) {
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
  std::replace(found_before_.begin(), found_before_.end(), &topic, static_cast<Topic*>(nullptr));
  topics_.erase(topics_.find(topic.name));
}

bool NotificationRegistry::IsBeingCalled(const IObserver* observer) const {
  if (std::find(slots_.begin(), slots_.end(), observer) != slots_.end()) return true;
  for (const Call* call = calls_; call != nullptr; call = call->next) {
    if (call->observer == observer) return true;
  }
  return false;
}

}  // namespace ovrant
