// SPDX-License-Identifier: MIT
// Bytes to and from a client, plain or encrypted.

#ifndef EMULATOR_CHANNEL_H_
#define EMULATOR_CHANNEL_H_

#include <sys/types.h>

#include <cstddef>

namespace stowra_emulator {

// Works on a non-blocking socket that it does not own. The caller waits for the socket.
class Channel {
 public:
  // What an attempt returns instead of a number of bytes.
  static constexpr ssize_t kFailed = -1;
  static constexpr ssize_t kWantsRead = -2;   // Wait until the socket is readable, then try again.
  static constexpr ssize_t kWantsWrite = -3;  // The same for writable.

  virtual ~Channel() = default;

  // Each returns the number of bytes moved, or one of the constants. Receive returns 0 at the end
  // of the stream. Peek leaves the bytes for Receive.
  virtual ssize_t Receive(char* data, std::size_t size) = 0;
  virtual ssize_t Peek(char* data, std::size_t size) = 0;
  virtual ssize_t Send(const char* data, std::size_t size) = 0;

  // True if Receive has bytes that are no longer in the socket.
  virtual bool HasBufferedInput() const { return false; }

  // Tells the client that nothing more is sent.
  virtual void EndSending() = 0;
};

// The bytes as they are.
class PlainChannel : public Channel {
 public:
  explicit PlainChannel(int socket) : socket_(socket) {}

  ssize_t Receive(char* data, std::size_t size) override;
  ssize_t Peek(char* data, std::size_t size) override;
  ssize_t Send(const char* data, std::size_t size) override;
  void EndSending() override {}

 private:
  const int socket_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CHANNEL_H_
