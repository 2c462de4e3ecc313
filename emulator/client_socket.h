// SPDX-License-Identifier: MIT
// The socket of one client.

#ifndef EMULATOR_CLIENT_SOCKET_H_
#define EMULATOR_CLIENT_SOCKET_H_

#include <openssl/ssl.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <memory>

#include "emulator/channel.h"
#include "emulator/file_descriptor.h"
#include "emulator/socket_address.h"
#include "emulator/stop_event.h"

namespace stowra_emulator {

// Sends to and receives from a client. Every wait ends early when the stop event is set. The stop
// event must outlive this object. For one thread.
class ClientSocket {
 public:
  // Speaks TLS if `tls` is not null. It must then outlive this object.
  ClientSocket(FileDescriptor socket, const StopEvent& stop, SSL_CTX* tls);

  // The address of this server, as the client reached it.
  SocketAddress LocalAddress() const;

  // True if bytes or the end of the stream can be received.
  bool WaitReadable(std::chrono::milliseconds timeout) const;

  // Returns the number of bytes received, or 0 at the end of the stream. Returns -1 after an error,
  // the stop event or 30 seconds without a byte.
  ssize_t Receive(char* data, std::size_t size);

  // False if the client has left, takes nothing for 30 seconds, or the stop event is set.
  bool Send(const char* data, std::size_t size);

  // Waits for `duration`. False if the client leaves first or the stop event is set. A client that
  // has shut down its sending side counts as gone.
  bool Pause(std::chrono::milliseconds duration) const;

  // Closes the connection with a reset.
  void Reset();

  // Ends sending, then closes once the client has closed or a second has passed. Closing at once
  // could lose the response: unread input makes the system send a reset.
  void Finish();

 private:
  // Waits for what a channel wants. False if it does not come.
  bool WaitFor(ssize_t wanted) const;

  FileDescriptor socket_;
  const StopEvent& stop_;
  const std::unique_ptr<Channel> channel_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CLIENT_SOCKET_H_
