// SPDX-License-Identifier: MIT
// A network of one server. While it exists, every connection of this process leads to that server,
// and nothing leaves the process. It replaces connect, getsockname, getpeername, send, poll,
// getaddrinfo and freeaddrinfo of the C library.

#ifndef FUZZ_PLATFORM_HTTP_FAKE_NETWORK_H_
#define FUZZ_PLATFORM_HTTP_FAKE_NETWORK_H_

#include <cstddef>
#include <string>
#include <vector>

namespace stowra_fuzz {

// The server's answer to a request, and whether the server then closes the connection. An open
// connection is closed when its client waits for more.
struct ServerReply {
  std::string bytes;
  bool closes = false;
};

// Answers each request with the next reply, on any connection. Closes when no reply is left. Only
// one may exist at a time, for one thread.
class FakeNetwork {
 public:
  explicit FakeNetwork(std::vector<ServerReply> replies);

  // Closes the server's ends of all connections.
  ~FakeNetwork();

  FakeNetwork(const FakeNetwork&) = delete;
  FakeNetwork& operator=(const FakeNetwork&) = delete;

  // The number of replies sent.
  std::size_t sent() const { return sent_; }

  // Whether a client has waited long for nothing.
  bool has_waited() const { return has_waited_; }

  // Called by the replaced C functions.
  bool Connect(int client);
  int PortOf(int client) const;  // 0 without a connection, else another for each
  void OnSent(int client, const char* data, std::size_t size);
  bool CloseAll();
  void NoteWait() { has_waited_ = true; }

 private:
  struct Connection {
    int client;
    int server;
    bool is_open;
  };

  static void Close(Connection& connection);

  std::vector<ServerReply> replies_;
  std::vector<Connection> connections_;
  std::size_t sent_ = 0;
  bool has_waited_ = false;
};

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_FAKE_NETWORK_H_
