// Who observes what, and which calls are under way.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_REGISTRY_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_REGISTRY_H_

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common_stowraapi/platform/observer.h"

namespace ovrant {

// Behind CNotificationCenter, whose promises it keeps. The lock guards every member and is never
// held during a call of an observer.
class NotificationRegistry {
 public:
  void Add(const char* name, IObserver* observer);
  void Remove(IObserver* observer);
  void Send(const char* name, void* payload);

 private:
  // The observers of one name in order of registration. While deliveries run, a removal leaves a
  // null in place, so that their positions stay true; the last delivery to end closes the gaps.
  struct Topic {
    std::string name;
    std::vector<IObserver*> observers;
    int deliveries = 0;
    bool has_gaps = false;
  };

  // A call under way, on the stack of the thread that makes it.
  struct Call {
    IObserver* observer;
    Call* next;
  };

  void Deliver(Topic& topic, const char* name, void* payload, std::unique_lock<std::mutex>& lock);
  void CallObserver(IObserver* observer, const char* name, void* payload,
                    std::unique_lock<std::mutex>& lock);
  void EndDelivery(Topic& topic);
  void EndCall(Call& call);
  void RemoveFromTopic(Topic& topic, IObserver* observer);
  void DropIfUnused(Topic& topic);
  bool IsBeingCalled(const IObserver* observer) const;

  std::mutex mutex_;
  std::condition_variable call_ended_;
  std::size_t waiting_removals_ = 0;

  // Each key is a view of its topic's name.
  std::unordered_map<std::string_view, std::unique_ptr<Topic>> topics_;
  std::unordered_map<IObserver*, std::vector<Topic*>> topics_of_;
  Call* calls_ = nullptr;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_REGISTRY_H_
