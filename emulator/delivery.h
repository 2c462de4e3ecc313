// SPDX-License-Identifier: MIT
// Sending a response, with its fault.

#ifndef EMULATOR_DELIVERY_H_
#define EMULATOR_DELIVERY_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "emulator/client_socket.h"
#include "emulator/fault.h"

namespace stowra_emulator {

// Sends one response after the other. For one thread. The socket must outlive this object.
class Delivery {
 public:
  explicit Delivery(ClientSocket& socket) : socket_(socket) {}

  // Forgets the last response.
  void Reset();

  // Begins a response with a body of `body_size` bytes. 0 if the size is not known. Then a fault
  // that ends the body early ends it before its first byte.
  void Begin(const Fault& fault, std::uint64_t body_size);
  bool has_begun() const { return has_begun_; }

  // Sends the next bytes of the response, first its head. False if the client has left or the fault
  // has ended the response.
  bool Write(std::string_view bytes);

  // False if the connection cannot serve another request after what was sent.
  bool may_continue() const { return may_continue_; }

  std::uint64_t body_bytes() const { return body_bytes_; }  // Bytes of the body that were sent.
  const std::string& head() const { return head_; }         // Whole once all of it was written.

 private:
  bool SendHead();
  bool SendBody(std::string_view bytes);
  bool Drip(std::string_view bytes);
  bool Send(std::string_view bytes);
  bool IsCut() const;
  bool Cut();

  ClientSocket& socket_;
  Fault fault_;
  bool has_begun_ = false;
  bool head_was_sent_ = false;
  bool may_continue_ = true;
  std::uint64_t body_size_ = 0;
  std::uint64_t body_bytes_ = 0;
  std::string head_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_DELIVERY_H_
