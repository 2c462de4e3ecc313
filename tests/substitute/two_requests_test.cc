// SPDX-License-Identifier: MIT
// Several live objects that hear the same names.

#include <memory>

#include "tests/substitute/fixture.h"
#include "tests/substitute/started.h"

namespace stowra_substitute {
namespace {

class TwoRequestsTest : public SubstituteTest {};

TEST_F(TwoRequestsTest, OneUserInfoQueryRequestsAndTheOthersIgnoreItsEnd) {
  const UserInfoQuery before;
  const auto requesting = Started<UserInfoQuery>();
  const UserInfoQuery after;
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(), "post UserInfoQueryRequestReturned | post UserInfoUpdated");
  EXPECT_EQ(requesting->GetUserInfoValue("uid"), "1");
  EXPECT_TRUE(before.GetUserInfoValue("uid").empty());
  EXPECT_TRUE(after.GetUserInfoValue("uid").empty());
}

// The other one has ended a request of its own before, and handles the name with what it holds.
TEST_F(TwoRequestsTest, AnObjectThatStillHoldsATransportHandlesTheReturnOfAnother) {
  const auto idle = Started<ExtensionStoreStatus>("http://idle/");
  EXPECT_TRUE(EndTransfer("http://idle/", Reply(404, "")));
  const auto requesting = Started<ExtensionStoreStatus>();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "{}")));
  EXPECT_EQ(TakeText(),
            "post ExtensionStoreStatusRequestReturned | post ExtensionStoreAsyncStatusFailed | "
            "post ExtensionStoreAsyncStatusSucceeded");
}

TEST_F(TwoRequestsTest, ClassesDoNotHearEachOther) {
  const auto user = Started<UserInfoQuery>("http://user/");
  const auto update = Started<UpdateQuery>("http://update/");
  const auto status = Started<ExtensionStoreStatus>("http://status/");
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://user/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(), "post UserInfoQueryRequestReturned | post UserInfoUpdated");
  EXPECT_TRUE(EndTransfer("http://status/", NoReply()));
  EXPECT_EQ(TakeText(),
            "post ExtensionStoreStatusRequestFailed | post ExtensionStoreAsyncStatusFailed");
  EXPECT_TRUE(EndTransfer("http://update/", Reply(200, kUpdate)));
  EXPECT_EQ(TakeText(), "post UpdateQueryReturned | post UpdateQueryAsyncSucceeded");
}

// `doomed` runs, and is deleted when the query posts its success.
template <typename Doomed>
void ExpectDeletion(const UserInfoQuery& query, std::unique_ptr<Doomed>& doomed) {
  const Host host("UserInfoUpdated", [&] { doomed.reset(); });
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(),
            "post UserInfoQueryRequestReturned | post UserInfoUpdated | RemoveObserver | "
            "delegate deleted | http://doomed/: deleted | RemoveObserver");
  EXPECT_EQ(query.GetUserInfoValue("uid"), "1");
  EXPECT_FALSE(EndTransfer("http://doomed/", Reply(200, kUpdate)));
  EXPECT_EQ(TakeText(), "");
}

TEST_F(TwoRequestsTest, ARunningRequestIsDeletedInsideThePublicNotificationOfAnother) {
  auto doomed = Started<UpdateQuery>("http://doomed/");
  const auto query = Started<UserInfoQuery>();
  ExpectDeletion(*query, doomed);
}

// The deleted one stands after the other in the delivery that is under way.
TEST_F(TwoRequestsTest, RequestMayBeDeletedInAnothersPublicNotification) {
  const auto query = Started<UserInfoQuery>();
  auto doomed = Started<UserInfoQuery>("http://doomed/");
  ExpectDeletion(*query, doomed);
}

// A request may be deleted while another one, of another class, runs synchronously.
TEST_F(TwoRequestsTest, ARunningRequestIsDeletedInsideASynchronousRequest) {
  auto doomed = Started<UserInfoQuery>("http://doomed/");
  UpdateQuery query;
  query.Init("http://a/", nullptr);
  const Host host("UpdateQueryAsyncFailed", [&] { doomed.reset(); });
  ScriptTransfer(Reply(500, ""));
  EXPECT_FALSE(query.SynchronousRequest());
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | http://a/: Download | http://a/: deleted | "
            "post UpdateQueryAsyncFailed | RemoveObserver | delegate deleted | "
            "http://doomed/: deleted | RemoveObserver");
}

}  // namespace
}  // namespace stowra_substitute
