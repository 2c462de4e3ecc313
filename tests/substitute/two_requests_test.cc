// SPDX-License-Identifier: MIT
// Several live objects that hear the same names.

#include <memory>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

constexpr char kUser[] = R"({"uid":"1","email":"e","vkr_id":"v"})";
constexpr char kUpdate[] = R"({"update":{"current_version":"2","expire_version":"1"}})";

class TwoRequestsTest : public SubstituteTest {};

TEST_F(TwoRequestsTest, OneUserInfoQueryRequestsAndTheOtherIgnoresItsEnd) {
  for (const bool requests_first : {true, false}) {
    UserInfoQuery first;
    UserInfoQuery second;
    UserInfoQuery& requesting = requests_first ? first : second;
    const UserInfoQuery& other = requests_first ? second : first;
    requesting.Init("http://a/", nullptr);
    requesting.AsynchronousRequest();
    TakeEffects();

    EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
    EXPECT_EQ(TakeText(), "post UserInfoQueryRequestReturned | post UserInfoUpdated");
    EXPECT_EQ(requesting.GetUserInfoValue("uid"), "1");
    EXPECT_TRUE(other.GetUserInfoValue("uid").empty());
  }
}

TEST_F(TwoRequestsTest, OneUpdateQueryRequestsAndTheOtherIgnoresItsReturn) {
  UpdateQuery other;
  UpdateQuery requesting;
  requesting.Init("http://a/", nullptr);
  requesting.AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUpdate)));
  EXPECT_EQ(TakeText(), "post UpdateQueryReturned | post UpdateQueryAsyncSucceeded");
  EXPECT_TRUE(other.current_version_.empty());
}

TEST_F(TwoRequestsTest, OneExtensionStoreStatusRequestsAndTheOtherIgnoresItsReturn) {
  ExtensionStoreStatus other;
  ExtensionStoreStatus requesting;
  requesting.Init("http://a/", nullptr, "{}");
  requesting.AsynchronousStatus();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, R"({"extensions":[{"id":"x"}]})")));
  EXPECT_EQ(TakeText(),
            "post ExtensionStoreStatusRequestReturned | post ExtensionStoreAsyncStatusSucceeded");
  EXPECT_EQ(requesting.GetItemMapFromResponse().size(), 1U);
  EXPECT_TRUE(other.GetItemMapFromResponse().empty());
}

// The other one has ended a request of its own before, and handles the name with what it holds.
TEST_F(TwoRequestsTest, AnObjectThatStillHoldsATransportHandlesTheReturnOfAnother) {
  ExtensionStoreStatus idle;
  idle.Init("http://idle/", nullptr, "{}");
  idle.AsynchronousStatus();
  EXPECT_TRUE(EndTransfer("http://idle/", Reply(404, "")));
  ExtensionStoreStatus requesting;
  requesting.Init("http://a/", nullptr, "{}");
  requesting.AsynchronousStatus();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "{}")));
  EXPECT_EQ(TakeText(),
            "post ExtensionStoreStatusRequestReturned | post ExtensionStoreAsyncStatusFailed | "
            "post ExtensionStoreAsyncStatusSucceeded");
}

TEST_F(TwoRequestsTest, ClassesDoNotHearEachOther) {
  UserInfoQuery user;
  UpdateQuery update;
  ExtensionStoreStatus status;
  user.Init("http://user/", nullptr);
  update.Init("http://update/", nullptr);
  status.Init("http://status/", nullptr, "{}");
  user.AsynchronousRequest();
  update.AsynchronousRequest();
  status.AsynchronousStatus();
  TakeEffects();

  EXPECT_TRUE(EndTransfer("http://user/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(), "post UserInfoQueryRequestReturned | post UserInfoUpdated");
  EXPECT_TRUE(EndTransfer("http://status/", NoReply()));
  EXPECT_EQ(TakeText(),
            "post ExtensionStoreStatusRequestFailed | post ExtensionStoreAsyncStatusFailed");
  EXPECT_TRUE(EndTransfer("http://update/", Reply(200, kUpdate)));
  EXPECT_EQ(TakeText(), "post UpdateQueryReturned | post UpdateQueryAsyncSucceeded");
}

TEST_F(TwoRequestsTest, ARunningRequestIsDeletedInsideThePublicNotificationOfAnother) {
  auto doomed = std::make_unique<UpdateQuery>();
  doomed->Init("http://doomed/", nullptr);
  doomed->AsynchronousRequest();
  UserInfoQuery query;
  query.Init("http://a/", nullptr);
  query.AsynchronousRequest();
  const Host host("UserInfoUpdated", [&] { doomed.reset(); });

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(),
            "post UserInfoQueryRequestReturned | post UserInfoUpdated | RemoveObserver | "
            "delegate deleted | http://doomed/: deleted | RemoveObserver");
  EXPECT_EQ(query.GetUserInfoValue("uid"), "1");
  EXPECT_FALSE(EndTransfer("http://doomed/", Reply(200, kUpdate)));
  EXPECT_EQ(TakeText(), "");
}

// The deleted one stands after the other in the delivery that is under way.
TEST_F(TwoRequestsTest, RequestMayBeDeletedInAnothersPublicNotification) {
  UserInfoQuery query;
  query.Init("http://a/", nullptr);
  query.AsynchronousRequest();
  auto doomed = std::make_unique<UserInfoQuery>();
  doomed->Init("http://doomed/", nullptr);
  doomed->AsynchronousRequest();
  const Host host("UserInfoUpdated", [&] { doomed.reset(); });

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUser)));
  EXPECT_EQ(TakeText(),
            "post UserInfoQueryRequestReturned | post UserInfoUpdated | RemoveObserver | "
            "delegate deleted | http://doomed/: deleted | RemoveObserver");
  EXPECT_EQ(query.GetUserInfoValue("uid"), "1");
}

// A request may be deleted while another one, of another class, runs synchronously.
TEST_F(TwoRequestsTest, ARunningRequestIsDeletedInsideASynchronousRequest) {
  auto doomed = std::make_unique<UserInfoQuery>();
  doomed->Init("http://doomed/", nullptr);
  doomed->AsynchronousRequest();
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

TEST_F(TwoRequestsTest, ARequestStartsAnotherOneInsideItsPublicNotification) {
  UpdateQuery update;
  update.Init("http://update/", nullptr);
  UserInfoQuery user;
  user.Init("http://user/", nullptr);
  user.AsynchronousRequest();
  const Host host("UserInfoUpdated", [&] { update.AsynchronousRequest(); });
  EXPECT_TRUE(EndTransfer("http://user/", Reply(200, kUser)));
  EXPECT_TRUE(EndTransfer("http://update/", Reply(200, kUpdate)));
  EXPECT_EQ(update.current_version_, "2");
}

}  // namespace
}  // namespace stowra_substitute
