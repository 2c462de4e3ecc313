// SPDX-License-Identifier: MIT
// A client that sees the raw bytes and how the connection ends, and a fixture for it.

#ifndef TESTS_EMULATOR_RAW_CLIENT_H_
#define TESTS_EMULATOR_RAW_CLIENT_H_

#include <cstdint>
#include <memory>
#include <sstream>
#include <string_view>

#include "emulator/file_descriptor.h"
#include "tests/emulator/emulator_test.h"

namespace stowra_emulator {

struct RawResponse {
  std::string head;
  std::string body;

  int status() const;                                 // -1 without a head
  std::string Header(const std::string& name) const;  // Empty if it is absent.
};

// Fails the current test if it cannot connect or waits for a byte for 30 seconds.
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

  // Sends a request. Reads its response, which must declare its length.
  RawResponse Ask(std::string_view request);
  RawResponse Get(const std::string& target);

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

RawResponse SplitResponse(const std::string& bytes);

// Sends one request without a body on a new connection and reads to its end.
RawResponse RawGet(std::uint16_t port, const std::string& target);

// The whole response of the emulator with this address. Fails the current test if its status is
// another.
RawResponse GetFrom(const std::string& url, const std::string& target, int status = 200,
                    const std::string& fields = "");

// A request without a body that keeps the connection open.
std::string GetRequest(const std::string& target);

// Reads the next response, which must declare its length. The connection stays open.
RawResponse ReadResponse(RawClient& client);

// The port in the address of an emulator.
std::uint16_t PortOf(const std::string& url);

template <typename Work>
std::chrono::steady_clock::duration TimeOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::steady_clock::now() - start;
}

class RawTest : public testing::Test {
 protected:
  // The first call starts the emulator with options_.
  std::uint16_t port();

  // The response on a new connection, which the emulator must then close without a reset.
  RawResponse AnswerTo(std::string_view bytes);

  // Ends the emulator and returns its log.
  std::string EndAndReadLog();

  std::ostringstream log_;
  EmulatorOptions options_;
  std::unique_ptr<Emulator> emulator_;
};

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_RAW_CLIENT_H_
