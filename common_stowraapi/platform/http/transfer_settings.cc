// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/transfer_settings.h"

namespace ovrant::internet {

TransferSettings& TransferSettings::Instance() {
  static auto* const settings = new TransferSettings;
  return *settings;
}

void TransferSettings::SetDefaults(const TransferDefaults& defaults) {
  auto next = std::make_shared<const TransferDefaults>(defaults);
  const std::lock_guard<std::mutex> lock(mutex_);
  defaults_.swap(next);
}

std::shared_ptr<const TransferDefaults> TransferSettings::defaults() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return defaults_;
}

}  // namespace ovrant::internet
