// How a complete response is sent.

#ifndef EMULATOR_DELIVERY_H_
#define EMULATOR_DELIVERY_H_

#include <cstddef>
#include <string_view>

#include "emulator/client_socket.h"
#include "emulator/fault.h"

namespace stowra_emulator {

struct Delivery {
  std::size_t body_bytes = 0;  // As many as were sent.
  bool may_continue = false;   // Whether the connection can serve another request.
};

// Sends `response`, head and body, in the way of the fault. After a reset `socket` is closed.
Delivery Deliver(std::string_view response, const Fault& fault, ClientSocket& socket);

}  // namespace stowra_emulator

#endif  // EMULATOR_DELIVERY_H_
