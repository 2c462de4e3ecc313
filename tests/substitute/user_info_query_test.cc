// Requests of UserInfoQuery: construction, what is posted and when, destruction.

#include "common_stowraapi/services/user_info_query.h"

#include <memory>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::UserInfoQuery;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAnswer[] = R"({"uid":"1","email":"e","vkr_id":"v","displayname":"Ada"})";

// Opens the members that it has from its base.
class OpenQuery : public UserInfoQuery {
 public:
  using UserInfoQuery::context_;
  using UserInfoQuery::delegate_;
  using UserInfoQuery::failed_message_;
  using UserInfoQuery::failed_notification_;
  using UserInfoQuery::internet_data_;
  using UserInfoQuery::returned_message_;
  using UserInfoQuery::returned_notification_;
  using UserInfoQuery::url_;
};

class UserInfoQueryTest : public SubstituteTest {
 protected:
  UserInfoQueryTest() : query(new UserInfoQuery) {
    query->Init("http://a/", Address(0x2a));
    TakeEffects();
  }

  void TearDown() override {
    query.reset();
    SubstituteTest::TearDown();
  }

  std::unique_ptr<UserInfoQuery> query;
};

TEST_F(UserInfoQueryTest, Constants) {
  EXPECT_EQ(UserInfoQuery::kUserIdKey, "uid");
  EXPECT_EQ(UserInfoQuery::kUserDisplayNameKey, "displayname");
  EXPECT_EQ(UserInfoQuery::kUserEmailKey, "email");
  EXPECT_EQ(UserInfoQuery::kUserVkrhIdKey, "vkr_id");
  EXPECT_EQ(UserInfoQuery::kAsyncReturnedMessage, 28004U);
  EXPECT_EQ(UserInfoQuery::kAsyncFailedMessage, 28005U);
  EXPECT_STREQ(UserInfoQuery::kAsynchReturnedNotification, "UserInfoQueryRequestReturned");
  EXPECT_STREQ(UserInfoQuery::kAsyncFailedNotification, "UserInfoQueryRequestFailed");
  EXPECT_STREQ(UserInfoQuery::kUserInfoUpdatedNotification, "UserInfoUpdated");
}

TEST_F(UserInfoQueryTest, ConstructorSetsMessagesAndNamesAndObservesThem) {
  const OpenQuery fresh;
  EXPECT_THAT(TakeEffects(), ElementsAre("AddObserver UserInfoQueryRequestReturned",
                                         "AddObserver UserInfoQueryRequestFailed"));
  EXPECT_EQ(fresh.returned_message_, 28004U);
  EXPECT_EQ(fresh.failed_message_, 28005U);
  EXPECT_STREQ(fresh.returned_notification_, "UserInfoQueryRequestReturned");
  EXPECT_STREQ(fresh.failed_notification_, "UserInfoQueryRequestFailed");
  EXPECT_TRUE(fresh.url_.empty());
  EXPECT_EQ(fresh.context_, nullptr);
  EXPECT_EQ(fresh.internet_data_, nullptr);
  EXPECT_EQ(fresh.delegate_, nullptr);
  EXPECT_TRUE(fresh.GetUserInfoValue("uid").empty());
}

TEST_F(UserInfoQueryTest, DestructorRemovesTheObserverBeforeAnythingElse) {
  query.reset();
  EXPECT_THAT(TakeEffects(), ElementsAre("RemoveObserver", "RemoveObserver"));
}

TEST_F(UserInfoQueryTest, DestructorOfARunningRequestDropsItWithoutAPost) {
  query->AsynchronousRequest();
  TakeEffects();
  query.reset();
  EXPECT_THAT(TakeEffects(), ElementsAre("RemoveObserver", "delegate deleted", "http://a/: deleted",
                                         "RemoveObserver"));
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, kAnswer)));
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

TEST_F(UserInfoQueryTest, SynchronousSuccessPostsWhileTheTransportExists) {
  ScriptTransfer(Reply(200, kAnswer));
  EXPECT_TRUE(query->SynchronousRequest());
  EXPECT_EQ(query->GetUserInfoValue("displayname"), "Ada");
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed", "http://a/: Download",
                          "SendNotification UserInfoUpdated, payload null", "http://a/: deleted"));
}

TEST_F(UserInfoQueryTest, SynchronousFailurePostsNothingAndKeepsTheCache) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  const Outcome failures[] = {NoReply(),
                              {false, 200, kAnswer, {}},
                              Reply(201, R"({"uid":"2","email":"","vkr_id":""})"),
                              Reply(304, ""),
                              Reply(200, ""),
                              Reply(200, "{"),
                              Reply(200, R"({"uid":"2","email":"2"})")};
  for (const Outcome& failure : failures) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query->SynchronousRequest());
    EXPECT_THAT(TakeEffects(),
                ElementsAre("http://a/: constructed", "http://a/: Download", "http://a/: deleted"));
    EXPECT_EQ(query->GetUserInfoValue("uid"), "1");
    EXPECT_EQ(query->GetUserInfoValue("displayname"), "Ada");
  }
}

TEST_F(UserInfoQueryTest, EmptyUrlDoesNothingVisible) {
  query->Init("", nullptr);
  EXPECT_FALSE(query->SynchronousRequest());
  query->AsynchronousRequest();
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

TEST_F(UserInfoQueryTest, AsynchronousRequestHandsItsMessagesAndNamesToTheDelegate) {
  query->AsynchronousRequest();
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed",
                          "delegate constructed: context 0x2a, 28004 UserInfoQueryRequestReturned, "
                          "28005 UserInfoQueryRequestFailed",
                          "http://a/: DownloadWithDelegate, user data null"));
}

TEST_F(UserInfoQueryTest, AsynchronousSuccessPostsWhenTheCacheIsFilled) {
  ovrant::utils::ovrant_ustring seen;
  const Host host("UserInfoUpdated", [&] { seen = query->GetUserInfoValue("displayname"); });
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kAnswer)));
  EXPECT_THAT(TakeEffects(),
              ElementsAre("SendNotification UserInfoQueryRequestReturned, payload 0x2a",
                          "SendNotification UserInfoUpdated, payload null"));
  EXPECT_EQ(seen, "Ada");
}

TEST_F(UserInfoQueryTest, AsynchronousFailurePostsNothingAndKeepsTheCache) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  for (const Outcome& failure :
       {Reply(500, R"({"uid":"2","email":"","vkr_id":""})"), Reply(200, ""), Reply(200, "{}")}) {
    query->AsynchronousRequest();
    TakeEffects();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
    EXPECT_THAT(TakeEffects(),
                ElementsAre("SendNotification UserInfoQueryRequestReturned, payload 0x2a"));
    EXPECT_EQ(query->GetUserInfoValue("uid"), "1");
  }
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", NoReply()));
  EXPECT_THAT(TakeEffects(),
              ElementsAre("SendNotification UserInfoQueryRequestFailed, payload 0x2a"));
  EXPECT_EQ(query->GetUserInfoValue("uid"), "1");
}

TEST_F(UserInfoQueryTest, EachSuccessPostsOnceAndReplacesTheWholeCache) {
  const Host host("UserInfoUpdated", [] {});
  ScriptTransfer(Reply(200, kAnswer));
  EXPECT_TRUE(query->SynchronousRequest());
  EXPECT_EQ(host.count(), 1);
  query->AsynchronousRequest();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, R"({"uid":"2","email":"","vkr_id":"w"})")));
  EXPECT_EQ(host.count(), 2);
  EXPECT_EQ(query->GetUserInfoValue("uid"), "2");
  EXPECT_EQ(query->GetUserInfoValue("vkr_id"), "w");
  EXPECT_TRUE(query->GetUserInfoValue("email").empty());
  EXPECT_TRUE(query->GetUserInfoValue("displayname").empty());
}

TEST_F(UserInfoQueryTest, ParsingPostsNothing) {
  EXPECT_TRUE(query->ParseResponse(kAnswer));
  EXPECT_FALSE(query->ParseResponse(""));
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

TEST_F(UserInfoQueryTest, Hooks) {
  query->OnSyncResponseFail();
  query->OnAsyncResponseFail();
  EXPECT_THAT(TakeEffects(), IsEmpty());
  query->OnSyncResponseSuccess();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UserInfoUpdated, payload null"));
  query->OnAsyncResponseSuccess();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UserInfoUpdated, payload null"));
}

TEST_F(UserInfoQueryTest, ClearCacheEmptiesThenPostsEvenWhenEmpty) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  ovrant::utils::ovrant_ustring seen = "not yet";
  const Host host("UserInfoUpdated", [&] { seen = query->GetUserInfoValue("uid"); });
  query->ClearCache();
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(query->GetUserInfoValue("displayname").empty());
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UserInfoUpdated, payload null"));
  query->ClearCache();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UserInfoUpdated, payload null"));
}

TEST_F(UserInfoQueryTest, SendCacheUpdateNotificationPostsAndChangesNothing) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  query->SendCacheUpdateNotification();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UserInfoUpdated, payload null"));
  EXPECT_EQ(query->GetUserInfoValue("uid"), "1");
  EXPECT_EQ(query->GetUserInfoValue("displayname"), "Ada");
}

TEST_F(UserInfoQueryTest, NamesOfOtherClassesAreIgnored) {
  query->AsynchronousRequest();
  TakeEffects();
  for (const char* const name :
       {"UpdateQueryReturned", "UpdateQueryFailed", "ExtensionStoreStatusRequestReturned",
        "ExtensionStoreStatusRequestFailed", "UserInfoUpdated"}) {
    query->OnNotification(name, nullptr);
    EXPECT_THAT(TakeEffects(), IsEmpty()) << name;
  }
}

}  // namespace
}  // namespace stowra_substitute
