// One exchange in the background, and who is to hear of its end.

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

// How a delegate wants the end of a transfer announced. The names are copies: the code that they
// came from may be unloaded while the transfer runs.
struct Announcement {
  void* context;
  std::string returned_notification;
  std::string failed_notification;
  std::shared_ptr<DeliveryGate> gate;  // closed when the delegate is destroyed
};

// Shared by the transport that it belongs to, the worker that runs it and the completion that is on
// its way to the host. Transport and delegate may die at any moment: each closes its gate, and no
// delivery passes a closed gate.
class BackgroundTransfer final : public TransferRecord {
 public:
  // `publish` stores the reply in the transport. It is called at most once, and not after Abandon
  // has been called.
  BackgroundTransfer(HttpRequest&& request, std::shared_ptr<TransferListener> listener,
                     Announcement announcement, std::function<void(HttpReply)> publish);

  // For the worker's thread alone.
  HttpExchange& exchange() { return exchange_; }

  // Whether nobody is left to hear of the end. Safe from any thread.
  bool IsAbandoned() const;

  bool Abandon() override;

  // Stores the reply in the transport and posts the delegate's name for it. To be called once,
  // after the exchange has ended; any thread. A second call does nothing. Passes on what an
  // observer throws.
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
