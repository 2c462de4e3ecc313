// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/connection_sockets.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::internet::ConnectionSockets;
using ovrant::internet::CountUnsentBytes;
using ovrant::internet::IsAtEnd;

// Both ends of a connection over the loopback interface.
class Connection {
 public:
  explicit Connection(int family = AF_INET) {
    const int listener = socket(family, SOCK_STREAM, 0);
    sockaddr_storage address = {};
    address.ss_family = static_cast<sa_family_t>(family);
    if (family == AF_INET) {
      reinterpret_cast<sockaddr_in&>(address).sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    } else {
      reinterpret_cast<sockaddr_in6&>(address).sin6_addr = in6addr_loopback;
    }
    socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    client_ = socket(family, SOCK_STREAM, 0);
    if (bind(listener, any, size) == 0 && listen(listener, 1) == 0 &&
        getsockname(listener, any, &size) == 0 && connect(client_, any, size) == 0) {
      server_ = accept(listener, nullptr, nullptr);
    }
    close(listener);
  }
  ~Connection() {
    close(client_);
    CloseServer();
  }

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool is_open() const { return server_ >= 0; }
  int client() const { return client_; }
  int server() const { return server_; }
  int local_port() const { return Port(getsockname); }
  int remote_port() const { return Port(getpeername); }

  void CloseServer() {
    if (server_ >= 0) close(server_);
    server_ = -1;
  }

  // Waits until bytes or the end have come to the client.
  bool WaitAtClient() const {
    pollfd readable = {client_, POLLIN, 0};
    const auto limit = std::chrono::milliseconds(kPatience).count();
    return poll(&readable, 1, static_cast<int>(limit)) == 1;
  }

 private:
  int Port(int (*name_of)(int, sockaddr*, socklen_t*)) const {
    sockaddr_storage address = {};
    socklen_t size = sizeof(address);
    name_of(client_, reinterpret_cast<sockaddr*>(&address), &size);
    // The port lies at the same place in both families.
    return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
  }

  int client_ = -1;
  int server_ = -1;
};

TEST(ConnectionSocketsTest, FindsASocketByItsPorts) {
  const Connection first;
  const Connection second;
  ASSERT_TRUE(first.is_open() && second.is_open());
  ConnectionSockets sockets;
  EXPECT_EQ(sockets.Find(first.local_port(), first.remote_port()), ConnectionSockets::kNone);
  EXPECT_TRUE(sockets.Add(first.client()));
  EXPECT_TRUE(sockets.Add(second.client()));
  EXPECT_EQ(sockets.Find(second.local_port(), second.remote_port()), second.client());
  EXPECT_EQ(sockets.Find(first.local_port(), first.remote_port()), first.client());
  EXPECT_EQ(sockets.Find(first.local_port(), second.remote_port()), ConnectionSockets::kNone);
  sockets.Remove(first.client());
  EXPECT_EQ(sockets.Find(first.local_port(), first.remote_port()), ConnectionSockets::kNone);
}

TEST(ConnectionSocketsTest, FindsASocketOfTheOtherFamily) {
  const Connection connection(AF_INET6);
  if (!connection.is_open()) GTEST_SKIP() << "this system has no IPv6";
  ConnectionSockets sockets;
  EXPECT_TRUE(sockets.Add(connection.client()));
  EXPECT_EQ(sockets.Find(connection.local_port(), connection.remote_port()), connection.client());
}

TEST(ConnectionSocketsTest, FindsASocketThatConnectsAfterItWasAdded) {
  const int unconnected = socket(AF_INET, SOCK_STREAM, 0);
  const Connection connection;
  ASSERT_TRUE(connection.is_open());
  ConnectionSockets sockets;
  EXPECT_TRUE(sockets.Add(unconnected));
  EXPECT_EQ(sockets.Find(connection.local_port(), connection.remote_port()),
            ConnectionSockets::kNone);
  ASSERT_EQ(dup2(connection.client(), unconnected), unconnected);
  EXPECT_EQ(sockets.Find(connection.local_port(), connection.remote_port()), unconnected);
  close(unconnected);
}

TEST(ConnectionSocketsTest, WaitingBytesMakeASocketUnfit) {
  const Connection connection;
  ASSERT_TRUE(connection.is_open());
  ConnectionSockets sockets;
  EXPECT_TRUE(sockets.Add(connection.client()));
  EXPECT_FALSE(sockets.IsUnfit(connection.client()));
  ASSERT_EQ(send(connection.server(), "x", 1, 0), 1);
  ASSERT_TRUE(connection.WaitAtClient());
  EXPECT_TRUE(sockets.IsUnfit(connection.client()));
  // The byte is still there.
  char byte = 0;
  EXPECT_EQ(recv(connection.client(), &byte, 1, 0), 1);
  EXPECT_FALSE(sockets.IsUnfit(connection.client()));
}

TEST(ConnectionSocketsTest, EndOfAConnectionMakesItsSocketUnfit) {
  Connection connection;
  ASSERT_TRUE(connection.is_open());
  ConnectionSockets sockets;
  EXPECT_TRUE(sockets.Add(connection.client()));
  connection.CloseServer();
  ASSERT_TRUE(connection.WaitAtClient());
  EXPECT_TRUE(sockets.IsUnfit(connection.client()));
}

TEST(ConnectionSocketsTest, FramedOrUnknownSocketIsFit) {
  const Connection connection;
  ASSERT_TRUE(connection.is_open());
  ASSERT_EQ(send(connection.server(), "x", 1, 0), 1);
  ASSERT_TRUE(connection.WaitAtClient());
  ConnectionSockets sockets;
  EXPECT_FALSE(sockets.IsUnfit(connection.client()));
  EXPECT_TRUE(sockets.Add(connection.client()));
  EXPECT_TRUE(sockets.IsUnfit(connection.client()));
  sockets.SetFramed(connection.client());
  EXPECT_FALSE(sockets.IsUnfit(connection.client()));
}

TEST(ConnectionSocketsTest, EndComesAfterAllBytes) {
  Connection connection;
  ASSERT_TRUE(connection.is_open());
  EXPECT_FALSE(IsAtEnd(connection.client()));
  ASSERT_EQ(send(connection.server(), "x", 1, 0), 1);
  connection.CloseServer();
  ASSERT_TRUE(connection.WaitAtClient());
  EXPECT_FALSE(IsAtEnd(connection.client()));
  char byte = 0;
  ASSERT_EQ(recv(connection.client(), &byte, 1, 0), 1);
  ASSERT_TRUE(connection.WaitAtClient());
  EXPECT_TRUE(IsAtEnd(connection.client()));
}

TEST(ConnectionSocketsTest, CountsBytesThatThePeerHasNotTaken) {
  const Connection connection;
  ASSERT_TRUE(connection.is_open());
  EXPECT_EQ(CountUnsentBytes(connection.client()), 0U);
  EXPECT_EQ(CountUnsentBytes(-1), 0U);
  const std::string piece(1 << 16, 'x');
  while (send(connection.client(), piece.data(), piece.size(), MSG_DONTWAIT) > 0) {
  }
  EXPECT_GT(CountUnsentBytes(connection.client()), 0U);
}

}  // namespace
}  // namespace stowra_test
