// SPDX-License-Identifier: MIT
// Which observers are registered.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "common_stowraapi/platform/observer.h"

namespace ovrant {

// Keeps the promises of CNotificationCenter. Delivery::Lock guards every member.
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

  void DropIfUnused(const Topic& topic);

  // Holds the topics that have observers. Each key is a view of its topic's name.
  std::unordered_map<std::string_view, std::shared_ptr<Topic>> topics_;

  // Finds all registrations of one observer.
  std::map<std::pair<IObserver*, Topic*>, Serial> registrations_;

  Serial last_serial_ = 0;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
