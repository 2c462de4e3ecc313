#include "emulator/delivery.h"

namespace stowra_emulator {
namespace {

std::size_t HeadSize(std::string_view response) {
  constexpr std::string_view kHeadEnd = "\r\n\r\n";
  const std::size_t end = response.find(kHeadEnd);
  return end == std::string_view::npos ? response.size() : end + kHeadEnd.size();
}

bool Send(std::string_view bytes, ClientSocket& socket) {
  return socket.Send(bytes.data(), bytes.size());
}

Delivery Drip(std::string_view head, std::string_view body, std::chrono::milliseconds interval,
              ClientSocket& socket) {
  Delivery delivery;
  if (!Send(head, socket)) return delivery;
  for (; delivery.body_bytes < body.size(); ++delivery.body_bytes) {
    if (delivery.body_bytes > 0 && !socket.Pause(interval)) return delivery;
    if (!socket.Send(&body[delivery.body_bytes], 1)) return delivery;
  }
  delivery.may_continue = true;
  return delivery;
}

}  // namespace

Delivery Deliver(std::string_view response, const Fault& fault, ClientSocket& socket) {
  const std::size_t head_size = HeadSize(response);
  const std::string_view head = response.substr(0, head_size);
  const std::string_view body = response.substr(head_size);

  if (fault.kind == Fault::Kind::kDrip) return Drip(head, body, fault.pause, socket);
  if (fault.kind == Fault::Kind::kStall && !socket.Pause(fault.pause)) return {};

  const bool cut = fault.kind == Fault::Kind::kTruncate || fault.kind == Fault::Kind::kReset;
  Delivery delivery;
  delivery.body_bytes = cut ? body.size() / 2 : body.size();
  if (!Send(response.substr(0, head_size + delivery.body_bytes), socket)) return {};
  if (fault.kind == Fault::Kind::kReset) socket.Reset();
  // After an interim status the client still waits for the final response.
  const bool interim = fault.kind == Fault::Kind::kStatus && fault.status < 200;
  delivery.may_continue = !cut && !interim;
  return delivery;
}

}  // namespace stowra_emulator
