// Who observes what, and which calls are under way.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "common_stowraapi/platform/observer.h"

namespace ovrant {

// Behind CNotificationCenter, whose promises it keeps. The lock guards every member, except that a
// call ends without it; it is never held during a call of an observer.
class NotificationRegistry {
 public:
  void Add(const char* name, IObserver* observer);
  void Remove(IObserver* observer);
  void Send(const char* name, void* payload);

 private:
  using Observers = std::list<IObserver*>;

  // The observers of one name in order of registration. While deliveries run, a removal leaves a
  // null in place, so that what they hold stays true; the last delivery to end closes the gaps.
  struct Topic {
    std::string name;
    Observers observers;
    int deliveries = 0;
    bool has_gaps = false;
  };

  // A call under way: in a slot, or where all are taken in the list of such calls, on the stack of
  // the thread that makes it.
  struct Call {
    IObserver* observer;
    std::atomic<IObserver*>* slot;
    Call* next;
  };

  Topic* Find(const char* name);
  void Deliver(Topic& topic, const char* name, void* payload, std::unique_lock<std::mutex>& lock);
  void CallObserver(IObserver* observer, const char* name, void* payload,
                    std::unique_lock<std::mutex>& lock);
  void EndDelivery(Topic& topic);
  void BeginCall(Call& call);
  void EndCall(Call& call);
  void RemoveFromTopic(Topic& topic, Observers::iterator position);
  void DropIfUnused(Topic& topic);
  bool IsBeingCalled(const IObserver* observer) const;

  std::mutex mutex_;
  std::condition_variable call_ended_;
  std::atomic<std::size_t> waiting_removals_{0};

  // Each key is a view of its topic's name.
  std::unordered_map<std::string_view, std::unique_ptr<Topic>> topics_;

  // What was found for the names at some addresses, where it saves the hashing: most names are
  // constants. Null, or a topic; what is at an address now has yet to be compared with its name.
  std::array<Topic*, 64> found_before_{};

  // Where each observer stands in each of its topics; all of one observer's side by side.
  std::map<std::pair<IObserver*, Topic*>, Observers::iterator> registrations_;

  std::array<std::atomic<IObserver*>, 16> slots_{};
  Call* calls_ = nullptr;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_REGISTRY_H_
