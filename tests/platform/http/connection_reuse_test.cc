// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

class ConnectionReuseTest : public TransportTest {
 protected:
  static void Download(const RawServer& server) {
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download());
    EXPECT_EQ(BodyOf(transport), "hello");
  }

  static void DownloadInBackground(const RawServer& server) {
    Background background(server.Url());
    ASSERT_TRUE(background.Start());
    EXPECT_EQ(background.WaitForEnd(), kReturned);
    EXPECT_EQ(BodyOf(*background.transport), "hello");
  }
};

TEST_F(ConnectionReuseTest, SynchronousTransfersShareAConnection) {
  const RawServer server(Always(Response(200, "hello")));
  for (int i = 0; i < 5; ++i) Download(server);
  EXPECT_EQ(server.requests().size(), 5U);
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(ConnectionReuseTest, UploadsAndDownloadsShareAConnection) {
  const RawServer server(Always(Response(200, "hello")));
  Download(server);
  InternetData transport(Text("none:"));
  SetSendData("data", transport);
  EXPECT_TRUE(Post(server.Url(), transport));
  Download(server);
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(ConnectionReuseTest, ConsecutiveThreadsShareAConnection) {
  const RawServer server(Always(Response(200, "hello")));
  for (int i = 0; i < 3; ++i) {
    std::thread thread([&server] { Download(server); });
    thread.join();
  }
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(ConnectionReuseTest, ConcurrentThreadsUseSeparateConnections) {
  std::atomic<int> inside{0};
  Event both_inside;
  const RawServer server([&](const RawRequest&, RawConnection& connection) {
    if (++inside == 2) both_inside.Set();
    EXPECT_TRUE(both_inside.Wait());
    connection.Write(Response(200, "hello"));
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&server] {
      for (int k = 0; k < 5; ++k) Download(server);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(server.requests().size(), 10U);
  EXPECT_EQ(server.connections(), 2);
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

TEST_F(ConnectionReuseTest, BackgroundTransfersShareAConnection) {
  const RawServer server(Always(Response(200, "hello")));
  for (int i = 0; i < 5; ++i) DownloadInBackground(server);
  EXPECT_EQ(server.requests().size(), 5U);
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(ConnectionReuseTest, ReplacesAConnectionThatTheServerClosed) {
  const RawServer server(AlwaysThenClose(Response(200, "hello")));
  for (int i = 0; i < 3; ++i) Download(server);
  for (int i = 0; i < 3; ++i) DownloadInBackground(server);
  EXPECT_EQ(server.connections(), 6);
}

TEST_F(ConnectionReuseTest, ReplacesAConnectionThatTheServerReset) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(Response(200, "hello"));
    connection.Reset();
  });
  // A reset may overtake the response before it, so only later requests are checked.
  for (int i = 0; i < 3; ++i) {
    InternetData transport(Text(server.Url()));
    transport.Download();
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
    Background background(server.Url());
    SetSendData(data, *background.transport);
    ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
    EXPECT_EQ(background.WaitForEnd(), kReturned);
    EXPECT_EQ(BodyOf(*background.transport), data);
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
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
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
  DownloadInBackground(server);
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
