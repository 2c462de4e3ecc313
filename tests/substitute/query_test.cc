// SPDX-License-Identifier: MIT
// Requests of both queries: construction, what is posted and when, what each failure keeps.

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/substitute/fixture.h"
#include "tests/support/text.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;
using ovrant::webservices::WebServiceRequestBase;
using testing::ElementsAre;
using testing::IsEmpty;

using Effects = std::vector<std::string>;

constexpr char kUser[] = R"({"uid":"1","email":"e","vkr_id":"v","displayname":"Ada"})";
constexpr char kUpdate[] =
    R"({"update":{"current_version":"2","expire_version":"1"},"datafiles":[{"version":3}]})";

struct Kind {
  const char* name;
  std::unique_ptr<WebServiceRequestBase> (*make)();
  std::string returned;  // the name that the delegate posts
  std::string failed;
  const char* numbers[2];  // of these
  const char* answer;
  Effects on_success;
  Effects on_failure;
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

class QueryTest : public SubstituteTest, public testing::WithParamInterface<Kind> {
 protected:
  QueryTest() : kind(GetParam()), query(kind.make()) {
    query->Init("http://a/", Address(0x2a));
    TakeEffects();
  }
  void TearDown() override {
    query.reset();
    SubstituteTest::TearDown();
  }

  // The effects of a whole response or a failed transfer, and then `more`.
  Effects Returned(const Effects& more) const { return Ended(kind.returned, more); }
  Effects Failed(const Effects& more) const { return Ended(kind.failed, more); }

  const Kind& kind;
  std::unique_ptr<WebServiceRequestBase> query;

 private:
  static Effects Ended(const std::string& name, const Effects& more) {
    Effects effects = {"post " + name + " 0x2a"};
    effects.insert(effects.end(), more.begin(), more.end());
    return effects;
  }
};

INSTANTIATE_TEST_SUITE_P(Kinds, QueryTest,
                         testing::Values(Kind{"UserInfo",
                                              []() -> std::unique_ptr<WebServiceRequestBase> {
                                                return std::make_unique<UserInfoQuery>();
                                              },
                                              "UserInfoQueryRequestReturned",
                                              "UserInfoQueryRequestFailed",
                                              {"28004", "28005"},
                                              kUser,
                                              {"post UserInfoUpdated"},
                                              {}},
                                         Kind{"Update",
                                              []() -> std::unique_ptr<WebServiceRequestBase> {
                                                return std::make_unique<UpdateQuery>();
                                              },
                                              "UpdateQueryReturned",
                                              "UpdateQueryFailed",
                                              {"28006", "28007"},
                                              kUpdate,
                                              {"post UpdateQueryAsyncSucceeded"},
                                              {"post UpdateQueryAsyncFailed"}}),
                         stowra_test::RowName());

TEST_P(QueryTest, ConstructorObservesBothNames) {
  const auto fresh = kind.make();
  EXPECT_THAT(TakeEffects(),
              ElementsAre("AddObserver " + kind.returned, "AddObserver " + kind.failed));
}

TEST_P(QueryTest, DestructorRemovesTheObserverBeforeAnythingElse) {
  query->AsynchronousRequest();
  TakeEffects();
  query.reset();
  EXPECT_EQ(TakeText(), "RemoveObserver | delegate deleted | http://a/: deleted | RemoveObserver");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, kind.answer)));
  EXPECT_EQ(TakeText(), "");
}

TEST_P(QueryTest, HooksPost) {
  query->OnSyncResponseSuccess();
  EXPECT_EQ(TakeEffects(), kind.on_success);
  query->OnAsyncResponseSuccess();
  EXPECT_EQ(TakeEffects(), kind.on_success);
  query->OnSyncResponseFail();
  EXPECT_EQ(TakeEffects(), kind.on_failure);
  query->OnAsyncResponseFail();
  EXPECT_EQ(TakeEffects(), kind.on_failure);
}

TEST_P(QueryTest, ParsingPostsNothing) {
  EXPECT_TRUE(query->ParseResponse(kind.answer));
  EXPECT_FALSE(query->ParseResponse(""));
  EXPECT_EQ(TakeText(), "");
}

TEST_P(QueryTest, SynchronousSuccessPostsWhileTheTransportExists) {
  ScriptTransfer(Reply(200, kind.answer));
  EXPECT_TRUE(query->SynchronousRequest());
  EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed", "http://a/: Download",
                                         kind.on_success[0], "http://a/: deleted"));
}

TEST_P(QueryTest, SynchronousFailurePostsWhenTheTransportIsGone) {
  for (const Outcome& failure :
       {NoReply(), Outcome{false, 200, kind.answer, {}}, Reply(201, kind.answer), Reply(304, ""),
        Reply(200, ""), Reply(200, "{"), Reply(200, "{}")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query->SynchronousRequest());
    Effects expected = {"http://a/: constructed", "http://a/: Download", "http://a/: deleted"};
    expected.insert(expected.end(), kind.on_failure.begin(), kind.on_failure.end());
    EXPECT_EQ(TakeEffects(), expected);
  }
}

TEST_P(QueryTest, EmptyUrlFailsSynchronouslyAndDoesNothingAsynchronously) {
  query->Init("", nullptr);
  query->AsynchronousRequest();
  EXPECT_EQ(TakeText(), "");
  EXPECT_FALSE(query->SynchronousRequest());
  EXPECT_EQ(TakeEffects(), kind.on_failure);
}

TEST_P(QueryTest, HandsItsMessagesAndNamesToTheDelegate) {
  query->AsynchronousRequest();
  EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed",
                                         "delegate constructed: context 0x2a, " +
                                             (kind.numbers[0] + (" " + kind.returned)) + ", " +
                                             (kind.numbers[1] + (" " + kind.failed)),
                                         "http://a/: DownloadWithDelegate, user data null"));
}

TEST_P(QueryTest, AsynchronousEndPostsItsOutcome) {
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kind.answer)));
  EXPECT_EQ(TakeEffects(), Returned(kind.on_success));
  for (const Outcome& failure : {Reply(500, kind.answer), Reply(200, ""), Reply(200, "{}")}) {
    query->AsynchronousRequest();
    TakeEffects();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
    EXPECT_EQ(TakeEffects(), Returned(kind.on_failure));
  }
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", NoReply()));
  EXPECT_EQ(TakeEffects(), Failed(kind.on_failure));
}

TEST_P(QueryTest, OtherNamesAreIgnored) {
  query->AsynchronousRequest();
  TakeEffects();
  for (const std::string name :
       {"UpdateQueryReturned", "UpdateQueryFailed", "UserInfoQueryRequestReturned",
        "UserInfoQueryRequestFailed", "ExtensionStoreStatusRequestReturned",
        "ExtensionStoreStatusRequestFailed", "UserInfoUpdated"}) {
    if (name == kind.returned || name == kind.failed) continue;
    query->OnNotification(name.c_str(), nullptr);
    EXPECT_EQ(TakeText(), "") << name;
  }
}

class UserInfoQueryTest : public SubstituteTest {
 protected:
  UserInfoQueryTest() {
    query.Init("http://a/", nullptr);
    EXPECT_TRUE(query.ParseResponse(kUser));
    TakeEffects();
  }
  void TearDown() override {
    query.RemoveNotifications();
    query.CleanUpRequest();
    SubstituteTest::TearDown();
  }

  std::string Value(const char* key) const { return query.GetUserInfoValue(key).utf8(); }

  UserInfoQuery query;
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
  EXPECT_EQ(UserInfoQuery().GetUserInfoValue("uid"), "");
}

TEST_F(UserInfoQueryTest, FailureKeepsTheCache) {
  for (const Outcome& failure :
       {NoReply(), Outcome{false, 200, R"({"uid":"2","email":"","vkr_id":""})", {}},
        Reply(201, R"({"uid":"2","email":"","vkr_id":""})"), Reply(304, ""), Reply(200, ""),
        Reply(200, "{"), Reply(200, R"({"uid":"2","email":"2"})")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query.SynchronousRequest());
    query.AsynchronousRequest();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
    EXPECT_EQ(Value("uid"), "1");
    EXPECT_EQ(Value("displayname"), "Ada");
  }
}

TEST_F(UserInfoQueryTest, EachSuccessPostsOnceWhenTheWholeCacheIsReplaced) {
  std::string seen;
  const Host host("UserInfoUpdated", [&] { seen = Value("uid") + Value("displayname"); });
  ScriptTransfer(Reply(200, kUser));
  EXPECT_TRUE(query.SynchronousRequest());
  EXPECT_EQ(host.count(), 1);
  EXPECT_EQ(seen, "1Ada");
  query.AsynchronousRequest();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, R"({"uid":"2","email":"","vkr_id":"w"})")));
  EXPECT_EQ(host.count(), 2);
  EXPECT_EQ(seen, "2");
  EXPECT_EQ(Value("vkr_id"), "w");
  EXPECT_EQ(Value("email"), "");
}

TEST_F(UserInfoQueryTest, ClearCacheEmptiesThenPostsEvenWhenEmpty) {
  std::string seen = "not yet";
  const Host host("UserInfoUpdated", [&] { seen = Value("uid"); });
  query.ClearCache();
  EXPECT_EQ(seen, "");
  EXPECT_EQ(Value("displayname"), "");
  EXPECT_EQ(TakeText(), "post UserInfoUpdated");
  query.ClearCache();
  EXPECT_EQ(TakeText(), "post UserInfoUpdated");
}

TEST_F(UserInfoQueryTest, SendCacheUpdateNotificationPostsAndChangesNothing) {
  query.SendCacheUpdateNotification();
  EXPECT_EQ(TakeText(), "post UserInfoUpdated");
  EXPECT_EQ(Value("uid"), "1");
  EXPECT_EQ(Value("displayname"), "Ada");
}

class UpdateQueryTest : public SubstituteTest {
 protected:
  UpdateQueryTest() {
    query.Init("http://a/", nullptr);
    EXPECT_TRUE(query.ParseResponse(kUpdate));
  }
  void TearDown() override {
    query.RemoveNotifications();
    query.CleanUpRequest();
    SubstituteTest::TearDown();
  }

  UpdateQuery query;
};

TEST_F(UpdateQueryTest, Constants) {
  EXPECT_EQ(UpdateQuery::kAsyncReturnedMessage, 28006U);
  EXPECT_EQ(UpdateQuery::kAsyncFailedMessage, 28007U);
  EXPECT_STREQ(UpdateQuery::kAsynchReturnedNotification, "UpdateQueryReturned");
  EXPECT_STREQ(UpdateQuery::kAsyncFailedNotification, "UpdateQueryFailed");
  EXPECT_STREQ(UpdateQuery::kUpdateQuerySucceededNotification, "UpdateQueryAsyncSucceeded");
  EXPECT_STREQ(UpdateQuery::kUpdateQueryFailedNotification, "UpdateQueryAsyncFailed");
}

TEST_F(UpdateQueryTest, RecordsHaveTheirDefaults) {
  const UpdateQuery fresh;
  EXPECT_TRUE(fresh.current_version_.empty() && fresh.expire_version_.empty());
  EXPECT_THAT(fresh.data_files_, IsEmpty());
  for (const MessageData& message : {MessageData(), fresh.message_}) {
    EXPECT_EQ(message.id, -1);
    EXPECT_EQ(message.max_shows, 1);
    EXPECT_EQ(message.width, 430);
    EXPECT_EQ(message.height, 540);
    EXPECT_TRUE(message.title.empty() && message.url.empty());
  }
  const DataFileData file;
  EXPECT_EQ(file.version, -1);
  EXPECT_TRUE(file.filename.empty() && file.url.empty());
}

TEST_F(UpdateQueryTest, SuccessPostsWhenTheResultsAreStored) {
  std::string seen;
  const Host host("UpdateQueryAsyncSucceeded",
                  [&] { seen += query.current_version_.utf8() + query.expire_version_.utf8(); });
  query.current_version_.clear();
  ScriptTransfer(Reply(200, kUpdate));
  EXPECT_TRUE(query.SynchronousRequest());
  query.expire_version_.clear();
  query.AsynchronousRequest();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kUpdate)));
  EXPECT_EQ(seen, "2121");
}

TEST_F(UpdateQueryTest, ResultsWithoutAnUpdateAreStoredButReportedAsFailure) {
  query.AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/",
                          Reply(200, R"({"message":{"id":7},"datafiles":[{"version":3},{}]})")));
  EXPECT_EQ(TakeText(), "post UpdateQueryReturned | post UpdateQueryAsyncFailed");
  EXPECT_EQ(query.message_.id, 7);
  EXPECT_EQ(query.data_files_.size(), 2U);
}

TEST_F(UpdateQueryTest, KeepsDataFilesWhenNoBodyIsParsed) {
  for (const Outcome& failure : {NoReply(), Reply(404, "{}"), Reply(204, "")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query.SynchronousRequest());
    query.AsynchronousRequest();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
  }
  ASSERT_EQ(query.data_files_.size(), 1U);
  EXPECT_EQ(query.data_files_[0].version, 3);
  // An empty body that is parsed empties them, and nothing else.
  ScriptTransfer(Reply(200, ""));
  EXPECT_FALSE(query.SynchronousRequest());
  EXPECT_THAT(query.data_files_, IsEmpty());
  EXPECT_EQ(query.current_version_, "2");
  EXPECT_EQ(query.expire_version_, "1");
}

}  // namespace
}  // namespace stowra_substitute
