// A client that sees the bytes and how the connection ends.

#ifndef TESTS_EMULATOR_RAW_CLIENT_H_
#define TESTS_EMULATOR_RAW_CLIENT_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Fails the current test when it cannot connect, or waits for a byte for 30 seconds.
class RawClient {
 public:
  explicit RawClient(std::uint16_t port);

  void Send(std::string_view bytes);

  // What has come since the last call, up to and with `mark`, or all of it at the end.
  std::string ReadUntil(std::string_view mark);

  // `size` bytes, or fewer at the end.
  std::string Read(std::size_t size);

  // All bytes up to the end of the connection.
  std::string ReadToEnd();

  // Whether the connection was found reset, not closed.
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

  std::string Header(const std::string& name) const;  // Empty when there is none.
};

RawResponse SplitResponse(const std::string& bytes);

// Sends one request with no body on a connection of its own and reads to the end of it.
RawResponse RawGet(std::uint16_t port, const std::string& target);

// A request with no body after which the connection stays open.
std::string GetRequest(const std::string& target);

// The next response on a connection that stays open; it must declare its length.
RawResponse ReadResponse(RawClient& client);

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_RAW_CLIENT_H_
