// SPDX-License-Identifier: MIT
// What must not be done to an object while a notification is being delivered to it, and what may.

#include <functional>
#include <memory>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

constexpr char kUrl[] = "http://a/";
constexpr char kUser[] = R"({"uid":"1","email":"e","vkr_id":"v"})";
constexpr char kUpdate[] = R"({"update":{"current_version":"2","expire_version":"1"}})";

template <typename Query>
std::unique_ptr<Query> StartedQuery(const char* url = kUrl) {
  auto query = std::make_unique<Query>();
  query->Init(url, nullptr);
  query->AsynchronousRequest();
  return query;
}

std::unique_ptr<ExtensionStoreStatus> StartedStatus(const char* url = kUrl) {
  auto status = std::make_unique<ExtensionStoreStatus>();
  status->Init(url, nullptr, "{}");
  status->AsynchronousStatus();
  return status;
}

#ifndef NDEBUG

// Ends the transfer of kUrl with `outcome` and does `what` when `name` is posted.
void DoInside(const char* name, const Outcome& outcome, const std::function<void()>& what) {
  const Host host(name, what);
  EndTransfer(kUrl, outcome);
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

class ForbiddenCallsDeathTest : public SubstituteTest {};

TEST_F(ForbiddenCallsDeathTest, OnAUserInfoQueryInsideItsPublicNotification) {
  auto query = StartedQuery<UserInfoQuery>();
  for (const auto& forbidden : kForbiddenCalls<UserInfoQuery>) {
    EXPECT_DEATH(DoInside("UserInfoUpdated", Reply(200, kUser), [&] { forbidden.call(query); }),
                 Caught(forbidden.said));
  }
}

TEST_F(ForbiddenCallsDeathTest, OnAnUpdateQueryInsideItsPublicNotification) {
  auto query = StartedQuery<UpdateQuery>();
  for (const auto& forbidden : kForbiddenCalls<UpdateQuery>) {
    EXPECT_DEATH(
        DoInside("UpdateQueryAsyncSucceeded", Reply(200, kUpdate), [&] { forbidden.call(query); }),
        Caught(forbidden.said));
    for (const Outcome& failure : {Reply(404, ""), NoReply()}) {
      EXPECT_DEATH(DoInside("UpdateQueryAsyncFailed", failure, [&] { forbidden.call(query); }),
                   Caught(forbidden.said));
    }
  }
}

TEST_F(ForbiddenCallsDeathTest, OnAStatusInsideItsPublicNotification) {
  auto status = StartedStatus();
  for (const auto& forbidden : kForbiddenCalls<ExtensionStoreStatus>) {
    EXPECT_DEATH(DoInside("ExtensionStoreAsyncStatusSucceeded", Reply(200, "{}"),
                          [&] { forbidden.call(status); }),
                 Caught(forbidden.said));
    for (const Outcome& failure : {Reply(404, ""), NoReply()}) {
      EXPECT_DEATH(
          DoInside("ExtensionStoreAsyncStatusFailed", failure, [&] { forbidden.call(status); }),
          Caught(forbidden.said));
    }
  }
}

TEST_F(ForbiddenCallsDeathTest, OnARequestInsideItsHook) {
  auto request = std::make_unique<RecordingRequest>();
  request->AddNotifications();
  request->Init(kUrl, nullptr);
  request->AsynchronousRequest();
  for (const auto& forbidden : kForbiddenCalls<RecordingRequest>) {
    request->in_hook = [&] { forbidden.call(request); };
    for (const Outcome& outcome : {Reply(200, "body"), Reply(404, ""), NoReply()}) {
      EXPECT_DEATH(EndTransfer(kUrl, outcome), Caught(forbidden.said));
    }
  }
  request->in_hook = [] {};
}

// The one that hears of another's failure, takes it for its own and posts.
TEST_F(ForbiddenCallsDeathTest, OnAQueryInsideWhatItPostsForAnother) {
  auto idle = std::make_unique<UpdateQuery>();
  const auto query = StartedQuery<UpdateQuery>();
  EXPECT_DEATH(DoInside("UpdateQueryAsyncFailed", NoReply(), [&] { idle.reset(); }),
               Caught("destroyed"));
}

// The notification of the first is still being delivered.
TEST_F(ForbiddenCallsDeathTest, OnAQueryInsideTheNotificationOfAnotherInsideItsOwn) {
  auto outer = StartedQuery<UserInfoQuery>();
  const auto inner = StartedStatus("http://inner/");
  const Host host("ExtensionStoreAsyncStatusFailed", [&] { outer.reset(); });
  EXPECT_DEATH(DoInside("UserInfoUpdated", Reply(200, kUser),
                        [] { EndTransfer("http://inner/", NoReply()); }),
               Caught("destroyed"));
}

#endif

class AllowedCallsTest : public SubstituteTest {};

TEST_F(AllowedCallsTest, ARequestIsDeletedRightAfterItsNotification) {
  auto query = StartedQuery<UserInfoQuery>();
  EXPECT_TRUE(EndTransfer(kUrl, Reply(200, kUser)));
  query->AsynchronousRequest();
  query->CleanUpRequest();
  query.reset();

  auto status = StartedStatus();
  EXPECT_TRUE(EndTransfer(kUrl, NoReply()));
  status->AsynchronousStatus();
  status.reset();
}

TEST_F(AllowedCallsTest, IdleRequestMayBeDeletedInAnothersNotification) {
  const auto query = StartedQuery<UpdateQuery>();
  auto idle = std::make_unique<UpdateQuery>();
  const Host host("UpdateQueryAsyncSucceeded", [&] { idle.reset(); });
  EXPECT_TRUE(EndTransfer(kUrl, Reply(200, kUpdate)));
  EXPECT_EQ(idle, nullptr);
  EXPECT_EQ(host.count(), 1);
}

// Its own would be the next to be called.
TEST_F(AllowedCallsTest, ARunningStatusIsDeletedInsideTheNotificationOfAnother) {
  const auto status = StartedStatus();
  auto doomed = StartedStatus("http://doomed/");
  const Host host("ExtensionStoreAsyncStatusFailed", [&] { doomed.reset(); });
  EXPECT_TRUE(EndTransfer(kUrl, NoReply()));
  EXPECT_EQ(host.count(), 1);
  EXPECT_FALSE(EndTransfer("http://doomed/", Reply(200, "{}")));
}

TEST_F(AllowedCallsTest, OthersAreStartedAndCleanedUpInsideTheNotificationOfOne) {
  const auto query = StartedQuery<UserInfoQuery>();
  const auto running = StartedQuery<UpdateQuery>("http://running/");
  const auto idle = std::make_unique<ExtensionStoreStatus>();
  idle->Init("http://idle/", nullptr, "{}");
  const Host host("UserInfoUpdated", [&] {
    running->CleanUpRequest();
    idle->AsynchronousStatus();
  });
  EXPECT_TRUE(EndTransfer(kUrl, Reply(200, kUser)));
  EXPECT_FALSE(EndTransfer("http://running/", Reply(200, kUpdate)));
  EXPECT_TRUE(EndTransfer("http://idle/", Reply(200, "{}")));
}

TEST_F(AllowedCallsTest, ARequestRunsBlockingInsideItsNotification) {
  const auto query = StartedQuery<UserInfoQuery>();
  int rounds = 0;
  const Host host("UserInfoUpdated", [&] {
    if (++rounds == 1) query->SynchronousRequest();
  });
  ScriptTransfer(Reply(200, kUser));
  EXPECT_TRUE(EndTransfer(kUrl, Reply(200, kUser)));
  EXPECT_EQ(rounds, 2);
}

}  // namespace
}  // namespace stowra_substitute
