// SPDX-License-Identifier: MIT
// One transfer in the background, and the objects that it reports to.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_TRANSFER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_TRANSFER_H_

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "common_stowraapi/platform/http/exchange.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/transfer_record.h"
#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant::internet {

// What a delegate posts at the end of a transfer. The names are copies, because the code that they
// came from may be unloaded while the transfer runs.
struct Announcement {
  void* context;
  std::string returned_notification;
  std::string failed_notification;
  std::shared_ptr<DeliveryGate> gate;  // closed when the delegate is destroyed
};

// Shared by its transport, the worker that runs it and the completion that is queued for the host.
// Transport and delegate may be deleted at any moment. Each closes its gate, and no delivery passes
// a closed gate.
class BackgroundTransfer final : public TransferRecord {
 public:
  // `publish` stores the reply in the transport. It is called at most once, and never after Abandon
  // has returned.
  BackgroundTransfer(HttpRequest&& request, std::shared_ptr<TransferListener> listener,
                     Announcement announcement, std::function<void(HttpReply)> publish);

  // Worker's thread only, once it is submitted.
  HttpExchange& exchange() { return exchange_; }

  // Numbers the transfers in the order in which they were made. Any thread.
  unsigned long number() const { return exchange_.number(); }

  // True when the transport or the delegate has closed its gate. Safe from any thread.
  bool IsAbandoned() const;

  unsigned long Abandon() override;

  // Stores the reply in the transport and posts the delegate's name for it. Call it after the
  // exchange has ended, on any thread. A second call does nothing. Exceptions from observers pass
  // through.
  void Deliver();

 private:
  HttpExchange exchange_;
  const Announcement announcement_;
  DeliveryGate transport_gate_;
  const std::function<void(HttpReply)> publish_;
  std::atomic<bool> delivered_{false};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_TRANSFER_H_
