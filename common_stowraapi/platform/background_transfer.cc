#include "common_stowraapi/platform/background_transfer.h"

#include <utility>

#include "common_stowraapi/platform/notification_center.h"

namespace ovrant::internet {

namespace {

// Leaves a gate that has been entered, whichever way the scope is left.
class GateLeaver {
 public:
  explicit GateLeaver(DeliveryGate& gate) : gate_(gate) {}
  ~GateLeaver() { gate_.Leave(); }

  GateLeaver(const GateLeaver&) = delete;
  GateLeaver& operator=(const GateLeaver&) = delete;

 private:
  DeliveryGate& gate_;
};

}  // namespace

BackgroundTransfer::BackgroundTransfer(HttpRequest&& request,
                                       std::shared_ptr<TransferListener> listener,
                                       const InternetDataDelegate& delegate,
                                       std::shared_ptr<DeliveryGate> delegate_gate,
                                       std::function<void(HttpReply)> publish)
    : exchange_(std::move(request), std::move(listener)),
      delegate_gate_(std::move(delegate_gate)),
      publish_(std::move(publish)),
      context_(delegate.context()),
      returned_notification_(delegate.returned_notification()),
      failed_notification_(delegate.failed_notification()) {}

bool BackgroundTransfer::IsAbandoned() const {
  return transport_gate_.IsClosed() || delegate_gate_->IsClosed();
}

bool BackgroundTransfer::Abandon() {
  transport_gate_.Close();
  return !delivered_;
}

void BackgroundTransfer::Deliver() {
  if (delivered_.exchange(true)) return;
  if (!delegate_gate_->Enter()) return;
  const GateLeaver leave_delegate(*delegate_gate_);

  HttpReply reply = exchange_.TakeReply();
  const std::string& name = reply.received ? returned_notification_ : failed_notification_;
  if (!transport_gate_.Enter([this, &reply] { publish_(std::move(reply)); })) return;
  const GateLeaver leave_transport(transport_gate_);

  // Either object may be deleted from here on.
  CNotificationCenter::Default()->SendNotification(name.c_str(), context_);
}

}  // namespace ovrant::internet
