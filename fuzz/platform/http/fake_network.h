// A network of one server, in place of the system's: while it stands, every connection of this
// process leads to it, and nothing leaves the process. It takes the places of connect, send, poll,
// getaddrinfo and freeaddrinfo of the C library.

#ifndef FUZZ_PLATFORM_HTTP_FAKE_NETWORK_H_
#define FUZZ_PLATFORM_HTTP_FAKE_NETWORK_H_

#include <cstddef>
#include <string>
#include <vector>

namespace stowra_fuzz {

// What the server sends to a request, and whether it closes the connection then. One that stays
// open is closed when its client waits for more.
struct ServerReply {
  std::string bytes;
  bool closes = false;
};

// Answers each request by the next reply, whatever the connection that it comes over; when there is
// none left, by closing. One at a time, for one thread.
class FakeNetwork {
 public:
  explicit FakeNetwork(std::vector<ServerReply> replies);

  // Closes the server's ends of all connections.
  ~FakeNetwork();

  FakeNetwork(const FakeNetwork&) = delete;
  FakeNetwork& operator=(const FakeNetwork&) = delete;

  // How many replies have been sent.
  std::size_t sent() const { return sent_; }

  // Whether a client has waited long and in vain.
  bool has_waited() const { return has_waited_; }

  // For the functions of the C library.
  bool Connect(int client);
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
