#include "common_stowraapi/platform/http/background_transfer.h"

#include <utility>

#include "common_stowraapi/platform/notification_center.h"

namespace ovrant::internet {

namespace {

// Leaves an entered gate at the end of the scope.
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
                                       Announcement announcement,
                                       std::function<void(HttpReply)> publish)
    : exchange_(std::move(request), std::move(listener)),
      announcement_(std::move(announcement)),
      publish_(std::move(publish)) {}

bool BackgroundTransfer::IsAbandoned() const {
  return transport_gate_.IsClosed() || announcement_.gate->IsClosed();
}

bool BackgroundTransfer::Abandon() {
  transport_gate_.Close();
  return !delivered_;
}

void BackgroundTransfer::Deliver() {
  if (delivered_.exchange(true)) return;
  if (!announcement_.gate->Enter()) return;
  const GateLeaver leave_delegate(*announcement_.gate);

  HttpReply reply = exchange_.TakeReply();
  const std::string& name =
      reply.received ? announcement_.returned_notification : announcement_.failed_notification;
  if (!transport_gate_.Enter([this, &reply] { publish_(std::move(reply)); })) return;
  const GateLeaver leave_transport(transport_gate_);

  // Transport and delegate may be deleted from here on.
  CNotificationCenter::Default()->SendNotification(name.c_str(), announcement_.context);
}

}  // namespace ovrant::internet
