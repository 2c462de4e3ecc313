// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/connection_sockets.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "tests/support/child_process.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::internet::ConnectionSockets;
using ovrant::internet::CountUnsentBytes;
using ovrant::internet::IsAtEnd;

// Both ends of a connection over the loopback interface.
class Connection {
 public:
  explicit Connection(int family = AF_INET) : client_(socket(family, SOCK_STREAM, 0)) {
    const OwnedDescriptor listener(socket(family, SOCK_STREAM, 0));
    sockaddr_storage address = {};
    address.ss_family = static_cast<sa_family_t>(family);
    if (family == AF_INET) {
      reinterpret_cast<sockaddr_in&>(address).sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    } else {
      reinterpret_cast<sockaddr_in6&>(address).sin6_addr = in6addr_loopback;
    }
    socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener.number(), any, size) == 0 && listen(listener.number(), 1) == 0 &&
        getsockname(listener.number(), any, &size) == 0 && connect(client(), any, size) == 0) {
      server_ = OwnedDescriptor(accept(listener.number(), nullptr, nullptr));
    }
  }

  bool is_open() const { return server() >= 0; }
  int client() const { return client_.number(); }
  int server() const { return server_.number(); }
  int local_port() const { return Port(getsockname); }
  int remote_port() const { return Port(getpeername); }

  void CloseServer() { server_.Close(); }

  // Waits until bytes or the end have come to the client.
  bool WaitAtClient() const {
    pollfd readable = {client(), POLLIN, 0};
    const auto limit = std::chrono::milliseconds(kPatience).count();
    return poll(&readable, 1, static_cast<int>(limit)) == 1;
  }

 private:
  int Port(int (*name_of)(int, sockaddr*, socklen_t*)) const {
    sockaddr_storage address = {};
    socklen_t size = sizeof(address);
    name_of(client(), reinterpret_cast<sockaddr*>(&address), &size);
    // The port lies at the same place in both families.
    return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
  }

  OwnedDescriptor client_;
  OwnedDescriptor server_;
};

class ConnectionSocketsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(connection_.is_open() && other_.is_open()); }

  int Find(const Connection& connection, const char* remote_ip = "127.0.0.1") {
    return sockets_.Find(connection.local_port(), remote_ip, connection.remote_port());
  }

  // A byte comes to the client of connection_, which reads it.
  void SendByte() {
    ASSERT_EQ(send(connection_.server(), "x", 1, 0), 1);
    ASSERT_TRUE(connection_.WaitAtClient());
  }
  void ReadByte() const {
    char byte = 0;
    ASSERT_EQ(recv(client_, &byte, 1, 0), 1);
  }

  Connection connection_;
  const int client_ = connection_.client();
  const Connection other_;
  ConnectionSockets sockets_;
};

TEST_F(ConnectionSocketsTest, FindsASocketByItsEnds) {
  EXPECT_EQ(Find(connection_), ConnectionSockets::kNone);
  EXPECT_TRUE(sockets_.Add(client_));
  EXPECT_TRUE(sockets_.Add(other_.client()));
  EXPECT_EQ(Find(other_), other_.client());
  EXPECT_EQ(Find(connection_), client_);
  EXPECT_EQ(sockets_.Find(connection_.local_port(), "127.0.0.1", other_.remote_port()),
            ConnectionSockets::kNone);
  sockets_.Remove(client_);
  EXPECT_EQ(Find(connection_), ConnectionSockets::kNone);
}

TEST_F(ConnectionSocketsTest, FindsASocketOfTheOtherFamily) {
  const Connection connection(AF_INET6);
  if (!connection.is_open()) GTEST_SKIP() << "this system has no IPv6";
  EXPECT_TRUE(sockets_.Add(connection.client()));
  EXPECT_EQ(Find(connection, "::1"), connection.client());
  EXPECT_EQ(Find(connection), ConnectionSockets::kNone);
}

// The system may give both the same local port.
TEST_F(ConnectionSocketsTest, FindsTheSocketOfOneOfTwoPeers) {
  EXPECT_TRUE(sockets_.Add(client_));
  EXPECT_EQ(Find(connection_, "127.0.0.2"), ConnectionSockets::kNone);
  EXPECT_EQ(Find(connection_), client_);
}

TEST_F(ConnectionSocketsTest, FindsASocketThatConnectsAfterItWasAdded) {
  const int unconnected = socket(AF_INET, SOCK_STREAM, 0);
  EXPECT_TRUE(sockets_.Add(unconnected));
  EXPECT_EQ(Find(connection_), ConnectionSockets::kNone);
  ASSERT_EQ(dup2(client_, unconnected), unconnected);
  EXPECT_EQ(Find(connection_), unconnected);
  close(unconnected);
}

TEST_F(ConnectionSocketsTest, WaitingBytesMakeASocketUnfit) {
  EXPECT_TRUE(sockets_.Add(client_));
  EXPECT_FALSE(sockets_.IsUnfit(client_));
  SendByte();
  EXPECT_TRUE(sockets_.IsUnfit(client_));
  // The byte is still there.
  ReadByte();
  EXPECT_FALSE(sockets_.IsUnfit(client_));
}

TEST_F(ConnectionSocketsTest, EndOfAConnectionMakesItsSocketUnfit) {
  EXPECT_TRUE(sockets_.Add(client_));
  connection_.CloseServer();
  ASSERT_TRUE(connection_.WaitAtClient());
  EXPECT_TRUE(sockets_.IsUnfit(client_));
}

TEST_F(ConnectionSocketsTest, FramedOrUnknownSocketIsFit) {
  SendByte();
  EXPECT_FALSE(sockets_.IsUnfit(client_));
  EXPECT_TRUE(sockets_.Add(client_));
  EXPECT_TRUE(sockets_.IsUnfit(client_));
  sockets_.SetFramed(client_);
  EXPECT_FALSE(sockets_.IsUnfit(client_));
}

TEST_F(ConnectionSocketsTest, EndComesAfterAllBytes) {
  EXPECT_FALSE(IsAtEnd(client_));
  SendByte();
  connection_.CloseServer();
  EXPECT_FALSE(IsAtEnd(client_));
  ReadByte();
  ASSERT_TRUE(connection_.WaitAtClient());
  EXPECT_TRUE(IsAtEnd(client_));
}

TEST_F(ConnectionSocketsTest, CountsBytesThatThePeerHasNotTaken) {
  EXPECT_EQ(CountUnsentBytes(client_), 0U);
  EXPECT_EQ(CountUnsentBytes(-1), 0U);
  const std::string piece(1 << 16, 'x');
  while (send(client_, piece.data(), piece.size(), MSG_DONTWAIT) > 0) {
  }
  EXPECT_GT(CountUnsentBytes(client_), 0U);
}

// A socket that libcurl opened for a request and closed before it was connected. The connection
// stands for one of another thread that got its number.
class AbandonedSocketTest : public ConnectionSocketsTest {
 protected:
  const int opener_ = 0;
};

TEST_F(AbandonedSocketTest, IsForgottenWhenAnotherCarriesTheRequest) {
  ASSERT_TRUE(sockets_.Add(client_, &opener_));
  ASSERT_TRUE(sockets_.Add(other_.client(), &opener_));
  sockets_.Settle(&opener_, other_.client());
  EXPECT_EQ(Find(connection_), ConnectionSockets::kNone);
  EXPECT_EQ(Find(other_), other_.client());
}

TEST_F(AbandonedSocketTest, IsForgottenWhenItsRequestIsDropped) {
  const int other_opener = 0;
  ASSERT_TRUE(sockets_.Add(client_, &opener_));
  ASSERT_TRUE(sockets_.Add(other_.client(), &other_opener));
  sockets_.Settle(&opener_, ConnectionSockets::kNone);
  EXPECT_EQ(Find(connection_), ConnectionSockets::kNone);
  EXPECT_EQ(Find(other_), other_.client());
}

// The connection stays for later requests.
TEST_F(AbandonedSocketTest, IsNotOneWhoseRequestHasEnded) {
  ASSERT_TRUE(sockets_.Add(client_, &opener_));
  sockets_.Settle(&opener_, client_);
  sockets_.Settle(&opener_, ConnectionSockets::kNone);
  EXPECT_EQ(Find(connection_), client_);
}

}  // namespace
}  // namespace stowra_test
