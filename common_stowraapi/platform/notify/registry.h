// Which observers are registered, and which of them are being called.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "common_stowraapi/platform/observer.h"

namespace ovrant {

// Keeps the promises of CNotificationCenter. The mutex guards every member. It is never held while
// an observer is called.
class NotificationRegistry {
 public:
  void Add(const char* name, IObserver* observer);
  void Remove(IObserver* observer);
  void Send(const char* name, void* payload);

 private:
  // Numbers all registrations in their order.
  using Serial = std::uint64_t;

  struct Topic {
    std::string name;
    std::map<Serial, IObserver*> observers;
  };

  class Call;

  void DropIfUnused(const Topic& topic);
  bool IsBeingCalled(const IObserver* observer) const;

  std::mutex mutex_;
  std::condition_variable call_ended_;

  // Holds the topics that have observers. Each key is a view of its topic's name.
  std::unordered_map<std::string_view, std::shared_ptr<Topic>> topics_;

  // Finds all registrations of one observer.
  std::map<std::pair<IObserver*, Topic*>, Serial> registrations_;

  Serial last_serial_ = 0;
  Call* calls_ = nullptr;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
