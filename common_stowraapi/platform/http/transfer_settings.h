// SPDX-License-Identifier: MIT
// The host's settings for all transfers.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_

#include <functional>
#include <memory>
#include <mutex>

#include "common_stowraapi/platform/notify/host_function.h"
#include "common_stowraapi/platform/transfer_types.h"

namespace ovrant::internet {

using TransferListener = SetFunction<const TransferEvent&>;

// One for the process, never destroyed. Safe from any thread.
class TransferSettings {
 public:
  static TransferSettings& Instance();

  void SetDefaults(const TransferDefaults& defaults);
  std::shared_ptr<const TransferDefaults> defaults() const;

  HostFunction<const TransferEvent&>& listener() { return listener_; }
  HostFunction<std::function<void()>>& executor() { return executor_; }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<const TransferDefaults> defaults_ = std::make_shared<TransferDefaults>();
  HostFunction<const TransferEvent&> listener_;
  HostFunction<std::function<void()>> executor_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_
