// SPDX-License-Identifier: MIT
// ExtensionStoreStatus apart from its background transfers: constants, registration, destruction,
// SynchronousStatus.

#include "tests/substitute/extension_store_fixture.h"

namespace stowra_substitute {
namespace {

using testing::IsEmpty;

static_assert(kExtensionStoreStatusRequestReturnedMessage == 28002U);
static_assert(kExtensionStoreStatusRequestFailedMessage == 28003U);

class ExtensionStoreStatusTest : public ExtensionStoreFixture {};

// Whether any request has succeeded before main, that is, as the library has loaded it.
const bool completed_at_load =
    ovrant::extensionstoreapi::ExtensionStoreStatus::status_sync_completed_;

TEST_F(ExtensionStoreStatusTest, NothingHasCompletedWhenTheLibraryIsLoaded) {
  EXPECT_FALSE(completed_at_load);
}

TEST_F(ExtensionStoreStatusTest, ObservesBothNamesUntilThatIsRemoved) {
  const char* const both =
      "AddObserver ExtensionStoreStatusRequestReturned | "
      "AddObserver ExtensionStoreStatusRequestFailed";
  ExtensionStoreStatus fresh;
  EXPECT_EQ(TakeText(), both);
  EXPECT_THAT(fresh.GetItemMapFromResponse(), IsEmpty());
  fresh.RemoveNotifications();
  EXPECT_EQ(TakeText(), "RemoveObserver");
  EXPECT_EQ(CountRegistrations(), 2);  // those of `status`
  fresh.AddNotifications();
  EXPECT_EQ(TakeText(), both);
}

// The first removal keeps the ends of other objects' transfers away; the order after it stands.
TEST_F(ExtensionStoreStatusTest, DestructorRemovesTheObserverThenDeletesDelegateThenTransport) {
  Start();
  status.reset();
  EXPECT_EQ(TakeText(), "RemoveObserver | delegate deleted | http://a/: deleted | RemoveObserver");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, kOne)));
  EXPECT_EQ(TakeText(), "");
}

TEST_F(ExtensionStoreStatusTest, SynchronousStatusSendsTheBodyWithItsContentType) {
  status->Init("http://a/", Address(0x2a), "{\"\xC3\xA9\":\"\xF0\x9F\x98\x80\"}");
  ScriptTransfer(Reply(200, kOne));
  EXPECT_TRUE(status->SynchronousStatus());
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | "
            "http://a/: set_send_data 13 bytes: {\"\xC3\xA9\":\"\xF0\x9F\x98\x80\"} | "
            "http://a/: SendAndRead http://a/, data null, length null, status 0, headers "
            "{Content-Type: application/json}, false, false, true, '', '', received headers null | "
            "http://a/: deleted");
  EXPECT_EQ(OnlyId(), "one");
  EXPECT_TRUE(Completed());
}

TEST_F(ExtensionStoreStatusTest, SynchronousStatusSendsAnEmptyBodyToAnEmptyUrl) {
  status->Init("", nullptr, "");
  ScriptTransfer(NoReply());
  EXPECT_FALSE(status->SynchronousStatus());
  EXPECT_EQ(TakeText(),
            ": constructed | : set_send_data 0 bytes:  | "
            ": SendAndRead , data null, length null, status 0, headers {Content-Type: "
            "application/json}, false, false, true, '', '', received headers null | "
            ": deleted");
}

TEST_F(ExtensionStoreStatusTest, SynchronousSuccessTakesAnyBody) {
  for (const char* const body : {"", "no JSON", "{}"}) {
    ScriptTransfer(Reply(200, kOne));
    EXPECT_TRUE(status->SynchronousStatus());
    ExtensionStoreStatus::status_sync_completed_ = false;
    ScriptTransfer(Reply(200, body));
    EXPECT_TRUE(status->SynchronousStatus()) << body;
    EXPECT_TRUE(Completed()) << body;
    EXPECT_THAT(status->GetItemMapFromResponse(), IsEmpty()) << body;
  }
}

TEST_F(ExtensionStoreStatusTest, SynchronousFailureKeepsTheLastResponse) {
  ScriptTransfer(Reply(200, kOne));
  ASSERT_TRUE(status->SynchronousStatus());
  ExtensionStoreStatus::status_sync_completed_ = false;
  const Outcome failures[] = {NoReply(),         {false, 200, kTwo, {}}, Reply(0, kTwo),
                              Reply(201, kTwo),  Reply(204, kTwo),       Reply(302, kTwo),
                              Reply(-200, kTwo), Reply(500, "")};
  for (const Outcome& failure : failures) {
    ScriptTransfer(failure);
    EXPECT_FALSE(status->SynchronousStatus()) << failure.status;
    EXPECT_EQ(OnlyId(), "one") << failure.status;
    EXPECT_FALSE(Completed()) << failure.status;
  }
}

// The status counts that SendAndRead has stored.
TEST_F(ExtensionStoreStatusTest, SynchronousStatusReadsTheStatusFromItsOwnVariable) {
  ScriptTransfer({true, 500, kOne, 200});
  EXPECT_TRUE(status->SynchronousStatus());
  EXPECT_EQ(OnlyId(), "one");
  ScriptTransfer({true, 200, kTwo, 500});
  EXPECT_FALSE(status->SynchronousStatus());
  EXPECT_EQ(OnlyId(), "one");
}

TEST_F(ExtensionStoreStatusTest, SynchronousStatusLeavesARunningTransferAlone) {
  Start();
  ScriptTransfer(Reply(200, kOne));
  EXPECT_TRUE(status->SynchronousStatus());
  ScriptTransfer(NoReply());
  EXPECT_FALSE(status->SynchronousStatus());
  EXPECT_THAT(TakeEffects(), testing::Not(testing::Contains("delegate deleted")));
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kTwo)));
  EXPECT_EQ(OnlyId(), "two");
}

}  // namespace
}  // namespace stowra_substitute
