// SPDX-License-Identifier: MIT
// A client that sees the raw bytes and how the connection ends.

#ifndef TESTS_EMULATOR_RAW_CLIENT_H_
#define TESTS_EMULATOR_RAW_CLIENT_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Fails the current test if it cannot connect or waits 30 seconds for a byte.
class RawClient {
 public:
  explicit RawClient(std::uint16_t port);

  void Send(std::string_view bytes);

  // False if the emulator has closed.
  bool TrySend(std::string_view bytes);

  // Reads up to and including `mark`, or to the end of the connection.
  std::string ReadUntil(std::string_view mark);

  // Reads `size` bytes, or fewer at the end.
  std::string Read(std::size_t size);

  // Reads all bytes up to the end of the connection.
  std::string ReadToEnd();

  // True if the connection was reset, not closed.
  bool was_reset() const { return was_reset_; }

 private:
  // False at the end of the connection.
  bool Receive();
  std::string Take(std::size_t size);

  FileDescriptor socket_;
  std::string received_;
  bool was_reset_ = false;
};

struct RawResponse {
  std::string head;
  std::string body;

  std::string Header(const std::string& name) const;  // Empty if it is absent.
};

RawResponse SplitResponse(const std::string& bytes);

// Sends one request without a body on a new connection and reads to its end.
RawResponse RawGet(std::uint16_t port, const std::string& target);

// A request without a body that keeps the connection open.
std::string GetRequest(const std::string& target);

// Reads the next response, which must declare its length. The connection stays open.
RawResponse ReadResponse(RawClient& client);

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_RAW_CLIENT_H_
