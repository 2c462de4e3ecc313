// SPDX-License-Identifier: MIT
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "common_stowraapi/platform/http/connection_sockets.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::internet::ConnectionSockets;

// A socket that is connected to the server.
class Client {
 public:
  explicit Client(const RawServer& server) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(server.port()));
    socklen_t size = sizeof(address);
    auto* const any_address = reinterpret_cast<sockaddr*>(&address);
    if (connect(socket_, any_address, size) != 0 || getsockname(socket_, any_address, &size) != 0) {
      throw std::runtime_error("cannot connect");
    }
    port_ = ntohs(address.sin_port);
  }
  ~Client() { close(socket_); }

  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  int socket() const { return socket_; }
  int port() const { return port_; }

 private:
  const int socket_;
  int port_ = 0;
};

// The client stands for a connection of another thread that got an abandoned socket's number.
TEST(AbandonedSocketTest, IsForgottenWhenAnotherCarriesTheRequest) {
  const RawServer server(Silence());
  const Client abandoned(server);
  const Client used(server);
  const int opener = 0;
  ConnectionSockets sockets;
  ASSERT_TRUE(sockets.Add(abandoned.socket(), &opener));
  ASSERT_TRUE(sockets.Add(used.socket(), &opener));
  sockets.Settle(&opener, used.socket());
  EXPECT_EQ(sockets.Find(abandoned.port(), server.port()), ConnectionSockets::kNone);
  EXPECT_EQ(sockets.Find(used.port(), server.port()), used.socket());
}

TEST(AbandonedSocketTest, IsForgottenWhenItsRequestIsDropped) {
  const RawServer server(Silence());
  const Client abandoned(server);
  const Client other(server);
  const int opener = 0;
  const int other_opener = 0;
  ConnectionSockets sockets;
  ASSERT_TRUE(sockets.Add(abandoned.socket(), &opener));
  ASSERT_TRUE(sockets.Add(other.socket(), &other_opener));
  sockets.Settle(&opener, ConnectionSockets::kNone);
  EXPECT_EQ(sockets.Find(abandoned.port(), server.port()), ConnectionSockets::kNone);
  EXPECT_EQ(sockets.Find(other.port(), server.port()), other.socket());
}

// The connection stays for later requests.
TEST(AbandonedSocketTest, IsNotOneWhoseRequestHasEnded) {
  const RawServer server(Silence());
  const Client used(server);
  const int opener = 0;
  ConnectionSockets sockets;
  ASSERT_TRUE(sockets.Add(used.socket(), &opener));
  sockets.Settle(&opener, used.socket());
  sockets.Settle(&opener, ConnectionSockets::kNone);
  EXPECT_EQ(sockets.Find(used.port(), server.port()), used.socket());
}

}  // namespace
}  // namespace stowra_test
