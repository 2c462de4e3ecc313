// The socket of one client.

#ifndef EMULATOR_CLIENT_SOCKET_H_
#define EMULATOR_CLIENT_SOCKET_H_

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>

#include "emulator/file_descriptor.h"
#include "emulator/stop_event.h"

namespace stowra_emulator {

// Sends and receives, ending early when the stop event (which must outlive it) is set.
// For one thread.
class ClientSocket {
 public:
  ClientSocket(FileDescriptor socket, const StopEvent& stop);

  // The port of this server; 0 when the connection has none any more.
  std::uint16_t LocalPort() const;

  // True when there is something to receive, be it the end of the stream.
  bool WaitReadable(std::chrono::milliseconds timeout) const;

  // The number of bytes received, 0 at the end of the stream, -1 on failure.
  ssize_t Receive(char* data, std::size_t size);

  // False when the client has gone or takes nothing for too long.
  bool Send(const char* data, std::size_t size);

  // Lets the time pass. False when the client hung up in the meantime; one that has only ended its
  // own sending counts as gone too.
  bool Pause(std::chrono::milliseconds duration) const;

  // Ends the connection with a reset instead of an orderly close.
  void Reset();

  // Ends the connection in order: closes after the client has, or after a while. (A close with
  // received bytes unread would make the system send a reset, which can overtake the response.)
  void Finish();

 private:
  FileDescriptor socket_;
  const StopEvent& stop_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CLIENT_SOCKET_H_
