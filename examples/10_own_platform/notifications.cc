// SPDX-License-Identifier: MIT
// The host's notifications, for a host that sends on its main thread only.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform_names.h"

namespace ovrant {

class NotificationRegistry {
 public:
  using Entry = std::pair<std::string, IObserver*>;

  bool Has(const Entry& entry) const {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
  }

  std::vector<Entry> entries;  // in order of registration
};

}  // namespace ovrant

CNotificationCenter::CNotificationCenter()
    : registry_(std::make_unique<ovrant::NotificationRegistry>()) {}
CNotificationCenter::~CNotificationCenter() = default;

CNotificationCenter* CNotificationCenter::Default() {
  static auto* const center = new CNotificationCenter;  // static destructors may use it
  return center;
}

void CNotificationCenter::AddObserver(const char* name, ovrant::IObserver* observer) {
  const ovrant::NotificationRegistry::Entry entry(name, observer);
  if (!registry_->Has(entry)) registry_->entries.push_back(entry);
}

void CNotificationCenter::RemoveObserver(ovrant::IObserver* observer) {
  auto& entries = registry_->entries;
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [observer](const auto& entry) { return entry.second == observer; }),
                entries.end());
}

// An observer may remove itself and others.
void CNotificationCenter::SendNotification(const char* name, void* payload) {
  const auto at_start = registry_->entries;
  for (const auto& entry : at_start) {
    if (entry.first == name && registry_->Has(entry)) entry.second->OnNotification(name, payload);
  }
}
