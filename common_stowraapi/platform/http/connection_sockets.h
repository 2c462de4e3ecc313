// SPDX-License-Identifier: MIT
// The sockets of a pool of connections.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_CONNECTION_SOCKETS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_CONNECTION_SOCKETS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace ovrant::internet {

// Finds the socket of a transfer. libcurl shows a transfer's socket only when the transfer is done,
// so this keeps all sockets that libcurl opens and finds one by its ends. For one thread at a time.
class ConnectionSockets {
 public:
  static constexpr int kNone = -1;

  // Add returns false when memory runs out. `opener` is the request that the socket is opened for.
  bool Add(int socket, const void* opener = nullptr) noexcept;
  void Remove(int socket) noexcept;

  // Removes what `opener` has added, except `used`, which outlives it. libcurl does not report that
  // it closes a socket before it is connected. The system may give its number to another thread.
  void Settle(const void* opener, int used) noexcept;

  // The socket that is connected from `local_port` to `remote_port` of `remote_ip`, a numeric
  // address, or kNone. The system gives one local port to connections with different peers.
  int Find(int local_port, const char* remote_ip, int remote_port);

  // Marks a socket as one whose frames name their request. Unasked bytes cannot be taken for a
  // reply there.
  void SetFramed(int socket);

  // A text about the TLS of a socket, empty at first. Null for a socket that is not here.
  std::string* TlsOf(int socket);

  // Whether bytes, or the end of the connection, wait on a socket where no reply is due.
  bool IsUnfit(int socket) const;

 private:
  struct Entry {
    int socket;
    int local_port;  // 0 until found
    int remote_port;
    bool is_framed;
    const void* opener;  // null once its request goes out
    std::string tls;
  };

  std::vector<Entry> sockets_;
};

// How many bytes that were written to the socket the system still holds. 0 when it does not tell.
std::size_t CountUnsentBytes(int socket);

// Whether the peer has ended its direction of the connection, and all that it sent has been read.
bool IsAtEnd(int socket);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CONNECTION_SOCKETS_H_
