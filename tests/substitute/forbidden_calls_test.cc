// SPDX-License-Identifier: MIT
// What must not be done to an object while a notification is being delivered to it, and what may.

#include <functional>
#include <memory>
#include <string>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"
#include "tests/substitute/started.h"

namespace stowra_substitute {
namespace {

#ifndef NDEBUG

// Ends the transfer of http://a/ with `outcome` and does `what` when `name` is posted.
void DoInside(const char* name, const Outcome& outcome, const std::function<void()>& what) {
  const Host host(name, what);
  EndTransfer("http://a/", outcome);
}

// How the check is worded.
std::string Caught(const std::string& what) {
  return "CommonStowraapi: .*" + what + " while a notification is being delivered to it";
}

// The forbidden call, and what the check says of it.
template <typename Query>
struct ForbiddenCall {
  void (*call)(std::unique_ptr<Query>&);
  const char* said;
};

template <typename Query>
constexpr ForbiddenCall<Query> kForbiddenCalls[] = {
    {[](std::unique_ptr<Query>& query) { query.reset(); }, "destroyed"},
    {[](std::unique_ptr<Query>& query) { query->AsynchronousRequest(); },
     "AsynchronousRequest was called"},
    {[](std::unique_ptr<Query>& query) { query->CleanUpRequest(); }, "CleanUpRequest was called"},
};

template <>
constexpr ForbiddenCall<ExtensionStoreStatus> kForbiddenCalls<ExtensionStoreStatus>[] = {
    {[](std::unique_ptr<ExtensionStoreStatus>& status) { status.reset(); }, "destroyed"},
    {[](std::unique_ptr<ExtensionStoreStatus>& status) { status->AsynchronousStatus(); },
     "AsynchronousStatus was called"},
};

// Does each forbidden call when `name` is posted at the end of the transfer.
template <typename Request>
void ExpectCaughtInside(const char* name, const Outcome& outcome) {
  auto request = Started<Request>();
  for (const auto& forbidden : kForbiddenCalls<Request>) {
    EXPECT_DEATH(DoInside(name, outcome, [&] { forbidden.call(request); }), Caught(forbidden.said));
  }
}

class ForbiddenCallsDeathTest : public SubstituteTest {};

TEST_F(ForbiddenCallsDeathTest, OnAQueryInsideItsPublicNotification) {
  ExpectCaughtInside<UserInfoQuery>("UserInfoUpdated", Reply(200, kUser));
  ExpectCaughtInside<UpdateQuery>("UpdateQueryAsyncSucceeded", Reply(200, kUpdate));
  ExpectCaughtInside<UpdateQuery>("UpdateQueryAsyncFailed", Reply(404, ""));
  ExpectCaughtInside<UpdateQuery>("UpdateQueryAsyncFailed", NoReply());
}

TEST_F(ForbiddenCallsDeathTest, OnAStatusInsideItsPublicNotification) {
  ExpectCaughtInside<ExtensionStoreStatus>("ExtensionStoreAsyncStatusSucceeded", Reply(200, "{}"));
  ExpectCaughtInside<ExtensionStoreStatus>("ExtensionStoreAsyncStatusFailed", Reply(404, ""));
  ExpectCaughtInside<ExtensionStoreStatus>("ExtensionStoreAsyncStatusFailed", NoReply());
}

TEST_F(ForbiddenCallsDeathTest, OnARequestInsideItsHook) {
  auto request = std::make_unique<RecordingRequest>();
  request->AddNotifications();
  request->Init("http://a/", nullptr);
  request->AsynchronousRequest();
  for (const auto& forbidden : kForbiddenCalls<RecordingRequest>) {
    request->in_hook = [&] { forbidden.call(request); };
    for (const Outcome& outcome : {Reply(200, "body"), Reply(404, ""), NoReply()}) {
      EXPECT_DEATH(EndTransfer("http://a/", outcome), Caught(forbidden.said));
    }
  }
  request->in_hook = [] {};
}

// The one that hears of another's failure, takes it for its own and posts.
TEST_F(ForbiddenCallsDeathTest, OnAQueryInsideWhatItPostsForAnother) {
  auto idle = std::make_unique<UpdateQuery>();
  const auto query = Started<UpdateQuery>();
  EXPECT_DEATH(DoInside("UpdateQueryAsyncFailed", NoReply(), [&] { idle.reset(); }),
               Caught("destroyed"));
}

// The notification of the first is still being delivered.
TEST_F(ForbiddenCallsDeathTest, OnAQueryInsideTheNotificationOfAnotherInsideItsOwn) {
  auto outer = Started<UserInfoQuery>();
  const auto inner = Started<ExtensionStoreStatus>("http://inner/");
  const Host host("ExtensionStoreAsyncStatusFailed", [&] { outer.reset(); });
  EXPECT_DEATH(DoInside("UserInfoUpdated", Reply(200, kUser),
                        [] { EndTransfer("http://inner/", NoReply()); }),
               Caught("destroyed"));
}

#endif

class AllowedCallsTest : public SubstituteTest {};

TEST_F(AllowedCallsTest, ARequestIsDeletedRightAfterItsNotification) {
  auto query = Started<UserInfoQuery>();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  query->AsynchronousRequest();
  query->CleanUpRequest();
  query.reset();

  auto status = Started<ExtensionStoreStatus>();
  EXPECT_TRUE(EndTransfer("http://a/", NoReply()));
  status->AsynchronousStatus();
  status.reset();
}

TEST_F(AllowedCallsTest, IdleRequestMayBeDeletedInAnothersNotification) {
  const auto query = Started<UpdateQuery>();
  auto idle = std::make_unique<UpdateQuery>();
  const Host host("UpdateQueryAsyncSucceeded", [&] { idle.reset(); });
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUpdate)));
  EXPECT_EQ(idle, nullptr);
  EXPECT_EQ(host.count(), 1);
}

// Its own would be the next to be called.
TEST_F(AllowedCallsTest, ARunningStatusIsDeletedInsideTheNotificationOfAnother) {
  const auto status = Started<ExtensionStoreStatus>();
  auto doomed = Started<ExtensionStoreStatus>("http://doomed/");
  const Host host("ExtensionStoreAsyncStatusFailed", [&] { doomed.reset(); });
  EXPECT_TRUE(EndTransfer("http://a/", NoReply()));
  EXPECT_EQ(host.count(), 1);
  EXPECT_FALSE(EndTransfer("http://doomed/", Reply(200, "{}")));
}

TEST_F(AllowedCallsTest, OthersAreStartedAndCleanedUpInsideTheNotificationOfOne) {
  const auto query = Started<UserInfoQuery>();
  const auto running = Started<UpdateQuery>("http://running/");
  UpdateQuery update;
  update.Init("http://update/", nullptr);
  ExtensionStoreStatus status;
  status.Init("http://status/", nullptr, "{}");
  const Host host("UserInfoUpdated", [&] {
    running->CleanUpRequest();
    update.AsynchronousRequest();
    status.AsynchronousStatus();
  });
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_FALSE(EndTransfer("http://running/", Reply(200, kUpdate)));
  EXPECT_TRUE(EndTransfer("http://update/", Reply(200, kUpdate)));
  EXPECT_EQ(update.current_version_, "2");
  EXPECT_TRUE(EndTransfer("http://status/", Reply(200, "{}")));
}

TEST_F(AllowedCallsTest, ARequestRunsBlockingInsideItsNotification) {
  const auto query = Started<UserInfoQuery>();
  int rounds = 0;
  const Host host("UserInfoUpdated", [&] {
    if (++rounds == 1) query->SynchronousRequest();
  });
  ScriptTransfer(Reply(200, kUser));
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_EQ(rounds, 2);
}

}  // namespace
}  // namespace stowra_substitute
