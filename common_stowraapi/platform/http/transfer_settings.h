// SPDX-License-Identifier: MIT
// The host's settings for all transfers.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "common_stowraapi/platform/notify/host_function.h"
#include "common_stowraapi/platform/transfer_types.h"

namespace ovrant::internet {

// The host's listener, and what it wants to hear.
class TransferListener : public SetFunction<const TransferEvent&> {
 public:
  TransferListener(std::function<void(const TransferEvent&)> function, TransferDetail detail,
                   TransferSecrets secrets)
      : SetFunction(std::move(function)), detail_(detail), secrets_(secrets) {}

  TransferDetail detail() const { return detail_; }
  bool hides_secrets() const { return secrets_ == TransferSecrets::kBlanked; }

 private:
  const TransferDetail detail_;
  const TransferSecrets secrets_;
};

// One for the process, never destroyed. Safe from any thread.
class TransferSettings {
 public:
  static TransferSettings& Instance();

  void SetDefaults(const TransferDefaults& defaults);
  std::shared_ptr<const TransferDefaults> defaults() const;

  HostFunctionPlace<TransferListener>& listener() { return listener_; }
  HostFunction<std::function<void()>>& executor() { return executor_; }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<const TransferDefaults> defaults_ = std::make_shared<TransferDefaults>();
  HostFunctionPlace<TransferListener> listener_;
  HostFunction<std::function<void()>> executor_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_SETTINGS_H_
