// SPDX-License-Identifier: MIT
// ExtensionStoreStatus::AsynchronousStatus, and how its end is handled.

#include <memory>
#include <new>
#include <string>
#include <utility>

#include "tests/substitute/extension_store_fixture.h"

namespace stowra_substitute {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ExtensionStoreAsyncTest : public ExtensionStoreFixture {};

TEST_F(ExtensionStoreAsyncTest, AsynchronousStatusSetsHeaderThenUtf8BodyThenStarts) {
  const std::pair<std::string, std::string> requests[] = {
      {"http://a/", "{}"}, {"", ""}, {"http://a/", "\xC3\xA9\xF0\x9F\x98\x80"}};
  for (const auto& [url, body] : requests) {
    ExtensionStoreStatus fresh;
    fresh.Init(url.c_str(), Address(0x2a), body.c_str());
    TakeEffects();
    fresh.AsynchronousStatus();
    const std::string length = std::to_string(body.size());
    EXPECT_THAT(TakeEffects(), ElementsAre(url + ": constructed", kDelegateConstructed,
                                           url + ": header Content-Type: application/json",
                                           url + ": set_send_data " + length + " bytes: " + body,
                                           url + ": UploadWithDelegate, user data null"));
  }
}

TEST_F(ExtensionStoreAsyncTest, SecondStatusReplacesTheTransportBeforeTheDelegate) {
  Start();
  status->Init("http://b/", nullptr, "[1]");
  status->AsynchronousStatus();
  EXPECT_EQ(
      TakeText(),
      "http://a/: deleted | http://b/: constructed | delegate deleted | "
      "delegate constructed: context null, 28002 ExtensionStoreStatusRequestReturned, 28003 "
      "ExtensionStoreStatusRequestFailed | http://b/: header Content-Type: application/json | "
      "http://b/: set_send_data 3 bytes: [1] | http://b/: UploadWithDelegate, user data null");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, kOne)));
  EXPECT_TRUE(EndTransfer("http://b/", Reply(200, kTwo)));
  EXPECT_EQ(OnlyId(), "two");
}

TEST_F(ExtensionStoreAsyncTest, IgnoresATransferThatDoesNotStart) {
  SetStartsInBackground(false);
  status->AsynchronousStatus();
  EXPECT_EQ(CountTransports(), 1);
  EXPECT_EQ(CountDelegates(), 1);
  EXPECT_THAT(TakeEffects(), testing::SizeIs(5));
}

TEST_F(ExtensionStoreAsyncTest, AsynchronousSuccessPostsWhenTheResponseIsKept) {
  std::string seen;
  bool was_completed = false;
  const Host host("ExtensionStoreAsyncStatusSucceeded", [&] {
    seen = OnlyId();
    was_completed = Completed();
  });
  Start();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kOne)));
  EXPECT_THAT(TakeEffects(), ElementsAre(kReturned, kPublicSuccess));
  EXPECT_EQ(seen, "one");
  EXPECT_TRUE(was_completed);
  EXPECT_EQ(CountTransports(), 1);
  EXPECT_EQ(CountDelegates(), 1);
}

TEST_F(ExtensionStoreAsyncTest, AsynchronousSuccessTakesAnyBody) {
  for (const char* const body : {"", "no JSON", "[]"}) {
    StartAndEnd(Reply(200, kOne));
    ExtensionStoreStatus::status_sync_completed_ = false;
    Start();
    EXPECT_TRUE(EndTransfer("http://a/", Reply(200, body)));
    EXPECT_THAT(TakeEffects(), ElementsAre(kReturned, kPublicSuccess)) << body;
    EXPECT_THAT(status->GetItemMapFromResponse(), IsEmpty()) << body;
    EXPECT_TRUE(Completed()) << body;
  }
}

TEST_F(ExtensionStoreAsyncTest, AsynchronousFailurePostsOnceAndKeepsTheLastResponse) {
  ScriptTransfer(Reply(200, kOne));
  ASSERT_TRUE(status->SynchronousStatus());
  ExtensionStoreStatus::status_sync_completed_ = false;
  for (const int http_status : {-200, 0, 199, 201, 204, 302, 404, 500}) {
    Start();
    EXPECT_TRUE(EndTransfer("http://a/", Reply(http_status, kTwo)));
    EXPECT_THAT(TakeEffects(), ElementsAre(kReturned, kPublicFailure)) << http_status;
  }
  Start();
  EXPECT_TRUE(EndTransfer("http://a/", {false, 200, kTwo, {}}));
  EXPECT_THAT(TakeEffects(), ElementsAre(kFailed, kPublicFailure));
  EXPECT_EQ(OnlyId(), "one");
  EXPECT_FALSE(Completed());
}

TEST_F(ExtensionStoreAsyncTest, FailureAtOnceIsPostedOnceThoughAnObserverThrows) {
  SetFailsAtOnce(true);
  const Host host("ExtensionStoreAsyncStatusFailed", [] { throw std::bad_alloc(); });
  EXPECT_THROW(status->AsynchronousStatus(), std::bad_alloc);
  EXPECT_EQ(host.count(), 1);
}

TEST_F(ExtensionStoreAsyncTest, CompletionIsNeverTakenBackByTheLibrary) {
  ScriptTransfer(Reply(200, kOne));
  ASSERT_TRUE(status->SynchronousStatus());
  status->Init("http://a/", nullptr, "{}");
  ScriptTransfer(NoReply());
  EXPECT_FALSE(status->SynchronousStatus());
  StartAndEnd(NoReply());
  status.reset();
  EXPECT_TRUE(Completed());
}

TEST_F(ExtensionStoreAsyncTest, InitForgetsTheResponseAndDoesNothingElse) {
  StartAndEnd(Reply(200, kOne));
  status->Init("http://a/", nullptr, "{}");
  EXPECT_THAT(status->GetItemMapFromResponse(), IsEmpty());
  EXPECT_EQ(TakeText(), "");

  Post("ExtensionStoreStatusRequestReturned");
  EXPECT_EQ(OnlyId(), "one");
}

TEST_F(ExtensionStoreAsyncTest, NamesAreComparedByContent) {
  StartAndEnd(Reply(200, kOne));
  Post("ExtensionStoreStatusRequestReturned");
  Post("ExtensionStoreStatusRequestFailed");
  EXPECT_THAT(TakeEffects(),
              ElementsAre("post ExtensionStoreStatusRequestReturned 0x99", kPublicSuccess,
                          "post ExtensionStoreStatusRequestFailed 0x99", kPublicFailure));
}

TEST_F(ExtensionStoreAsyncTest, OtherNamesAreIgnored) {
  StartAndEnd(Reply(200, kOne));
  for (const char* const name :
       {"", "ExtensionStoreStatusRequest", "ExtensionStoreStatusRequestReturned2",
        "UserInfoQueryRequestReturned", "UpdateQueryFailed", "ExtensionStoreAsyncStatusFailed"}) {
    status->OnNotification(name, nullptr);
    EXPECT_EQ(TakeText(), "") << name;
  }
}

TEST_F(ExtensionStoreAsyncTest, WithoutATransportOnlyTheFailedNamePosts) {
  Post("ExtensionStoreStatusRequestReturned");
  EXPECT_EQ(TakeText(), "post ExtensionStoreStatusRequestReturned 0x99");
  EXPECT_FALSE(Completed());
  Post("ExtensionStoreStatusRequestFailed");
  EXPECT_THAT(TakeEffects(),
              ElementsAre("post ExtensionStoreStatusRequestFailed 0x99", kPublicFailure));
}

// The status that counts is the one that is given; the body is the transport's.
TEST_F(ExtensionStoreAsyncTest, AReceivedStatusIsHandledAsGiven) {
  StartAndEnd(Reply(500, kOne));
  status->OnReceivedStatusResponse(200);
  EXPECT_THAT(TakeEffects(), ElementsAre(kPublicSuccess));
  EXPECT_EQ(OnlyId(), "one");
  for (const unsigned int http_status : {0U, 201U, 204U, 500U, 4294967295U}) {
    status->OnReceivedStatusResponse(http_status);
    EXPECT_THAT(TakeEffects(), ElementsAre(kPublicFailure)) << http_status;
  }
}

TEST_F(ExtensionStoreAsyncTest, WithoutATransportOnlyAReceivedFailureIsPosted) {
  status->OnReceivedStatusResponse(200);
  EXPECT_EQ(TakeText(), "");
  EXPECT_FALSE(Completed());
  status->OnReceivedStatusResponse(404);
  EXPECT_EQ(TakeText(), kPublicFailure);
}

#ifdef NDEBUG

// No host may do so, and a debug build says so. Elsewhere nothing is checked, and nothing breaks.
TEST_F(ExtensionStoreAsyncTest, DeletionInItsPublicNotificationBreaksNothing) {
  for (const Outcome& outcome : {Reply(200, kOne), Reply(500, ""), NoReply()}) {
    auto mortal = std::make_unique<ExtensionStoreStatus>();
    mortal->Init("http://mortal/", nullptr, "{}");
    mortal->AsynchronousStatus();
    const Host success("ExtensionStoreAsyncStatusSucceeded", [&] { mortal.reset(); });
    const Host failure("ExtensionStoreAsyncStatusFailed", [&] { mortal.reset(); });
    status->RemoveNotifications();
    EXPECT_TRUE(EndTransfer("http://mortal/", outcome));
    EXPECT_EQ(mortal, nullptr);
    EXPECT_EQ(success.count() + failure.count(), 1);
  }
}

#endif

}  // namespace
}  // namespace stowra_substitute
