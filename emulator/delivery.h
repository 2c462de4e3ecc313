// Sending a complete response.

#ifndef EMULATOR_DELIVERY_H_
#define EMULATOR_DELIVERY_H_

#include <cstddef>
#include <string_view>

#include "emulator/client_socket.h"
#include "emulator/fault.h"

namespace stowra_emulator {

struct Delivery {
  std::size_t body_bytes = 0;  // Bytes of the body that were sent.
  bool may_continue = false;   // True if the connection can serve another request.
};

// Sends `response`, head and body, with the fault applied. A reset closes `socket`.
Delivery Deliver(std::string_view response, const Fault& fault, ClientSocket& socket);

}  // namespace stowra_emulator

#endif  // EMULATOR_DELIVERY_H_
