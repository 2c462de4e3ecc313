// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/background_transfer.h"

#include <utility>

#include "common_stowraapi/platform/notification_center.h"

namespace ovrant::internet {

namespace {

// Neither source nor sink is called once a gate is closed.
HttpRequest&& Guard(HttpRequest&& request, const BodyGates& gates) {
  if (request.source) request.source->set_gates(gates);
  if (request.sink) request.sink->set_gates(gates);
  return std::move(request);
}

}  // namespace

BackgroundTransfer::BackgroundTransfer(HttpRequest&& request,
                                       std::shared_ptr<TransferListener> listener,
                                       Announcement announcement,
                                       std::function<void(HttpReply)> publish)
    : exchange_(Guard(std::move(request), {announcement.gate.get(), &transport_gate_}),
                std::move(listener)),
      announcement_(std::move(announcement)),
      publish_(std::move(publish)) {}

bool BackgroundTransfer::IsAbandoned() const {
  return transport_gate_.IsClosed() || announcement_.gate->IsClosed();
}

unsigned long BackgroundTransfer::Abandon() {
  transport_gate_.Close();
  return delivered_ ? 0 : number();
}

void BackgroundTransfer::Deliver() {
  if (delivered_.exchange(true)) return;
  const DeliveryGate::Call delegate_call(*announcement_.gate);
  if (!delegate_call.has_entered()) return;

  HttpReply reply = exchange_.TakeReply();
  const std::string& name =
      reply.received ? announcement_.returned_notification : announcement_.failed_notification;
  const DeliveryGate::Call transport_call(transport_gate_,
                                          [this, &reply] { publish_(std::move(reply)); });
  if (!transport_call.has_entered()) return;

  // Transport and delegate may be deleted from here on.
  CNotificationCenter::Default()->SendNotification(name.c_str(), announcement_.context);
  exchange_.TellPosted(name);
}

}  // namespace ovrant::internet
