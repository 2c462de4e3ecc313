// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notification_center.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/substitute/effects.h"

using stowra_substitute::AddressText;
using stowra_substitute::Record;

namespace ovrant {

class NotificationRegistry {
 public:
  using Entry = std::pair<std::string, ovrant::IObserver*>;

  bool Has(const Entry& entry) const {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
  }

  std::vector<Entry> entries;
};

}  // namespace ovrant

using ovrant::NotificationRegistry;

namespace {

int registrations = 0;

}  // namespace

CNotificationCenter::CNotificationCenter() : registry_(new NotificationRegistry) {}
CNotificationCenter::~CNotificationCenter() = default;

CNotificationCenter* CNotificationCenter::Default() {
  static auto* const center = new CNotificationCenter;
  return center;
}

void CNotificationCenter::AddObserver(const char* name, ovrant::IObserver* observer) {
  Record(std::string("AddObserver ") + name);
  const NotificationRegistry::Entry entry(name, observer);
  if (!registry_->Has(entry)) registry_->entries.push_back(entry);
  registrations = static_cast<int>(registry_->entries.size());
}

void CNotificationCenter::RemoveObserver(ovrant::IObserver* observer) {
  Record("RemoveObserver");
  auto& entries = registry_->entries;
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [observer](const NotificationRegistry::Entry& entry) {
                                 return entry.second == observer;
                               }),
                entries.end());
  registrations = static_cast<int>(entries.size());
}

// An observer that is removed during the delivery, and so may be gone, is not called.
void CNotificationCenter::SendNotification(const char* name, void* payload) {
  Record(std::string("post ") + name + (payload == nullptr ? "" : " " + AddressText(payload)));
  const std::vector<NotificationRegistry::Entry> at_start = registry_->entries;
  for (const NotificationRegistry::Entry& entry : at_start) {
    if (entry.first == name && registry_->Has(entry)) entry.second->OnNotification(name, payload);
  }
}

namespace stowra_substitute {

int CountRegistrations() { return registrations; }

}  // namespace stowra_substitute
