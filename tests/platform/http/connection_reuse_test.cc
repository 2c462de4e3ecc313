// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class ConnectionReuseTest : public TransportTest {
 protected:
  static void Download(const RawServer& server, Way way = Way::kDownload) {
    EXPECT_EQ(Ask(way, server.Url(), ""), Received(200, "hello"));
  }

  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(ConnectionReuseTest, TransfersOfOneKindShareAConnection) {
  for (const Way way : {Way::kDownload, Way::kDownloadWithDelegate}) {
    const RawServer server(Always(Response(200, "hello")));
    for (int i = 0; i < 5; ++i) Download(server, way);
    EXPECT_EQ(server.requests().size(), 5U);
    EXPECT_EQ(server.connections(), 1) << NameOf(way);
  }
}

TEST_F(ConnectionReuseTest, UploadsAndDownloadsShareAConnection) {
  Download(hello_);
  EXPECT_EQ(PostTo(hello_.Url(), "data"), Received(200, "hello"));
  Download(hello_);
  EXPECT_EQ(hello_.connections(), 1);
}

TEST_F(ConnectionReuseTest, KeepsTheConnectionsOfEightThreads) {
  constexpr int kKept = 8;
  constexpr int kThreads = 10;
  std::atomic<int> inside{0};
  std::array<Event, 2> all_inside;
  const RawServer server([&](const RawRequest&, RawConnection& connection) {
    const int number = inside++;
    Event& all = all_inside.at(static_cast<std::size_t>(number / kThreads));
    if (number % kThreads == kThreads - 1) all.Set();
    EXPECT_TRUE(all.Wait());
    connection.Write(Response(200, "hello"));
  });
  for (const int connections : {kThreads, kThreads + kThreads - kKept}) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back([&server] { Download(server); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(server.connections(), connections);
    EXPECT_TRUE(server.WaitUntilOpen(kKept));
  }
}

TEST_F(ConnectionReuseTest, ReplacesAConnectionThatTheServerReset) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(Response(200, "hello"));
    connection.Reset();
  });
  // A reset may overtake the response before it, so only later requests are checked.
  for (int i = 0; i < 3; ++i) {
    Get(server.Url());
    EXPECT_TRUE(server.WaitUntilUnused());
  }
  EXPECT_EQ(server.connections(), 3);
}

TEST_F(ConnectionReuseTest, UploadSucceedsOnAConnectionThatTheServerClosed) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.body));
    if (request.body == "first") connection.Close();
  });
  for (const char* data : {"first", "second"}) {
    EXPECT_EQ(Ask(Way::kUploadWithDelegate, server.Url(), data), Received(200, data));
  }
}

TEST_F(ConnectionReuseTest, ClosesTheConnectionWhenTheServerAsks) {
  const RawServer server(Always(Response(200, "hello", "Connection: close\r\n")));
  Download(server);
  EXPECT_TRUE(server.WaitUntilUnused());
  Download(server);
  EXPECT_EQ(server.connections(), 2);
}

TEST_F(ConnectionReuseTest, DoesNotReuseTheConnectionOfAFailedTransfer) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.connection == 0
                         ? Response(200, "hello", "Content-Encoding: unknown\r\n")
                         : Response(200, "hello"));
  });
  EXPECT_EQ(Get(server.Url()), Failed(200, TransferError::kEncoding));
  Download(server);
  EXPECT_EQ(server.connections(), 2);
}

TEST_F(ConnectionReuseTest, DroppedTransferClosesItsConnection) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target == "/stall") {
      connection.Stall();
    } else {
      connection.Write(Response(200, "hello"));
    }
  });
  // On an open connection only the deletion wakes the worker.
  Download(server, Way::kDownloadWithDelegate);
  {
    Background background(server.Url("/stall"));
    ASSERT_TRUE(background.Start());
    ASSERT_TRUE(server.WaitForRequests(2));
  }
  EXPECT_TRUE(server.WaitUntilUnused());
  EXPECT_EQ(server.connections(), 1);
}

}  // namespace
}  // namespace stowra_test
