// SPDX-License-Identifier: MIT
// Bytes that a server sends on a kept connection without a request.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <ostream>
#include <string>
#include <tuple>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/certificates.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

// The client's end of a connection to `port` of this machine, or -1. The client is this process.
int ClientSocket(int port) {
  constexpr int kMostDescriptors = 1024;
  for (int socket = 0; socket < kMostDescriptors; ++socket) {
    sockaddr_in peer = {};
    socklen_t size = sizeof(peer);
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
        peer.sin_family == AF_INET && ntohs(peer.sin_port) == port) {
      return socket;
    }
  }
  return -1;
}

// Waits until bytes have arrived at the client's end. False after kPatience.
bool WaitForBytes(int port) {
  pollfd readable = {ClientSocket(port), POLLIN, 0};
  const auto limit = std::chrono::milliseconds(kPatience).count();
  return readable.fd >= 0 && poll(&readable, 1, static_cast<int>(limit)) == 1;
}

struct Unasked {
  const char* name;
  std::string bytes;
};

void PrintTo(const Unasked& unasked, std::ostream* out) { *out << unasked.name; }

class KeptConnectionTest : public TransportTest {
 protected:
  KeptConnectionTest() {
    const auto file = folder_.path() / "authority.pem";
    authority_.WriteTo(file);
    TransferDefaults defaults;
    defaults.ca_file = file.c_str();
    InternetData::SetDefaults(defaults);
  }

  const TemporaryFolder folder_;
  const CertificateAuthority authority_{"trusted"};
  const Certificate certificate_ = authority_.Issue("IP:127.0.0.1");
};

class UnaskedBytesTest : public KeptConnectionTest,
                         public ::testing::WithParamInterface<std::tuple<Way, Unasked>> {
 protected:
  // Asks twice. The server sends the bytes after its first reply.
  void ExpectOwnReplies(const RawServer::Options& options) const {
    const auto& [way, unasked] = GetParam();
    Event first_ended;
    const RawServer server(
        [&, bytes = unasked.bytes](const RawRequest& request, RawConnection& connection) {
          connection.Write(Response(200, request.target));
          if (request.target != "/first") return;
          EXPECT_TRUE(first_ended.Wait());
          connection.Write(bytes);
        },
        options);
    EXPECT_EQ(Ask(way, server.Url("/first"), "data"), (Answer{true, 200, "/first"}));
    first_ended.Set();
    ASSERT_TRUE(WaitForBytes(server.port()));
    EXPECT_EQ(Ask(way, server.Url("/second"), "data"), (Answer{true, 200, "/second"}));
    EXPECT_EQ(server.connections(), 2);
  }
};

TEST_P(UnaskedBytesTest, AreNotTheNextReply) { ExpectOwnReplies({}); }

TEST_P(UnaskedBytesTest, AreNotTheNextReplyOverHttps) {
  ExpectOwnReplies({&certificate_, true, 0});
}

INSTANTIATE_TEST_SUITE_P(
    Ways, UnaskedBytesTest,
    ::testing::Combine(::testing::ValuesIn(kAllWays),
                       ::testing::Values(Unasked{"Response", Response(200, "unasked")},
                                         Unasked{"Timeout",
                                                 Response(408, "", "Connection: close\r\n")},
                                         Unasked{"LineEnd", "\r\n"})),
    [](const auto& test) {
      return std::string(NameOf(std::get<0>(test.param))) + std::get<1>(test.param).name;
    });

class ReuseTest : public KeptConnectionTest, public ::testing::WithParamInterface<Way> {};

TEST_P(ReuseTest, UsesOneConnectionWithoutSuchBytes) {
  for (const Certificate* certificate : {static_cast<const Certificate*>(nullptr), &certificate_}) {
    const RawServer server(Always(Response(200, "hello")), {certificate, true, 0});
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(Ask(GetParam(), server.Url(), "data"), (Answer{true, 200, "hello"}));
    }
    EXPECT_EQ(server.connections(), 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Ways, ReuseTest, ::testing::ValuesIn(kAllWays),
                         [](const auto& test) { return NameOf(test.param); });

}  // namespace
}  // namespace stowra_test
