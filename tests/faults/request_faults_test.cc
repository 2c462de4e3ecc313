// SPDX-License-Identifier: MIT
// Faults during a request, and transfers that the host deletes during a fault.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/services/update_query.h"
#include "tests/faults/fault.h"
#include "tests/faults/fault_table.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/event.h"
#include "tests/support/notification_recorder.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::webservices::UpdateQuery;

void ExpectNothingIsLeftBy(const char* fault, const char* way, const char* answer,
                           const std::function<void()>& run) {
  const auto timed_run = [&run](FaultRow& current) {
    const auto begin = std::chrono::steady_clock::now();
    run();
    current.longest = std::max<decltype(current.longest)>(current.longest,
                                                          std::chrono::steady_clock::now() - begin);
  };
  ExpectNothingIsLeft({fault, way, kRuns, answer}, kWarmUpRuns, timed_run, [] {});
}

class RequestFaultTest : public TransportTest {
 protected:
  // Makes many requests to a server that answers `bytes` and closes. Expects that each fails, with
  // one notification.
  static void ExpectOneFailure(const char* fault, const char* bytes) {
    const RawServer server(SayThenClose(bytes), kWithoutRecords);
    const auto ask = [&server](bool in_background) {
      NotificationRecorder recorder({UpdateQuery::kUpdateQuerySucceededNotification,
                                     UpdateQuery::kUpdateQueryFailedNotification});
      UpdateQuery query;
      query.Init(Text(server.Url()), nullptr);
      if (in_background) {
        query.AsynchronousRequest();
      } else {
        EXPECT_FALSE(query.SynchronousRequest());
      }
      ASSERT_TRUE(recorder.WaitFor(1));
      ASSERT_TRUE(server.WaitUntilUnused());
      if (in_background) LetWorkerCatchUp();
      EXPECT_EQ(recorder.names(),
                std::vector<std::string>{UpdateQuery::kUpdateQueryFailedNotification});
    };
    constexpr char kAnswer[] = "failed, 1 notification";
    ExpectNothingIsLeftBy(fault, "SynchronousRequest", kAnswer, [&ask] { ask(false); });
    ExpectNothingIsLeftBy(fault, "AsynchronousRequest", kAnswer, [&ask] { ask(true); });
  }
};

TEST_F(RequestFaultTest, ServerErrorIsOneFailure) {
  ExpectOneFailure("ServerError",
                   "HTTP/1.1 500 No\r\nContent-Length: 2\r\nConnection: close\r\n\r\nno");
}

TEST_F(RequestFaultTest, CutReplyIsOneFailure) {
  ExpectOneFailure("CutInsideJson", "HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"update\":{");
}

class DeletedTransferTest : public TransportTest {
 protected:
  // Deletes transfers whose reply has begun and goes on as `goes_on` says. Expects no post.
  static void ExpectSilence(const char* fault, const RawServer::Handler& goes_on) {
    const RawServer server(
        GoodOr([&goes_on](const RawRequest& request, RawConnection& connection) {
          connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\nx");
          goes_on(request, connection);
        }),
        kWithoutRecords);
    const auto run = [&server] {
      auto has_begun = std::make_shared<Event>();
      InternetData::SetTransferListener([has_begun](const TransferEvent& event) {
        if (event.bytes_received > 0) has_begun->Set();
      });
      Background background(server.Url());
      ASSERT_TRUE(background.Start());
      ASSERT_TRUE(has_begun->Wait());
      background.transport.reset();
      LetWorkerCatchUp();
      EXPECT_TRUE(background.recorder.entries().empty());
      ASSERT_TRUE(server.WaitUntilUnused());
    };
    ExpectNothingIsLeftBy(fault, "DownloadWithDelegate", "deleted, nothing posted", run);
  }
};

TEST_F(DeletedTransferTest, PostsNothingWhileAServerDrips) {
  ExpectSilence("DripDeleted", [](const RawRequest&, RawConnection& connection) {
    connection.Drip(std::string(1000, 'x'), std::chrono::milliseconds(1));
  });
}

TEST_F(DeletedTransferTest, PostsNothingWhileAServerIsSilent) {
  ExpectSilence("StallDeleted",
                [](const RawRequest&, RawConnection& connection) { connection.Stall(); });
}

}  // namespace
}  // namespace stowra_test
