// SPDX-License-Identifier: MIT
// Requests of both queries: construction, what is posted and when, what each failure keeps.

#include <memory>
#include <ostream>
#include <string>

#include "common_stowraapi/services/user_info_query.h"
#include "tests/services/fields.h"
#include "tests/substitute/fixture.h"
#include "tests/support/text.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;
using ovrant::webservices::WebServiceRequestBase;
using stowra_test::Fields;
using testing::IsEmpty;

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
  const char* on_success;  // what is posted, with " | " before it
  const char* on_failure;
};

template <typename Query>
std::unique_ptr<WebServiceRequestBase> Make() {
  return std::make_unique<Query>();
}

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

class QueryTest : public SubstituteTest, public testing::WithParamInterface<Kind> {
 protected:
  QueryTest() : kind(GetParam()), query(kind.make()) {
    query->Init("http://a/", Address(0x2a));
    TakeEffects();
  }

  // The effects of the end of a background transfer.
  std::string EffectsOf(const Outcome& outcome) {
    query->AsynchronousRequest();
    TakeEffects();
    EXPECT_TRUE(EndTransfer("http://a/", outcome));
    return TakeText();
  }

  const Kind& kind;
  std::unique_ptr<WebServiceRequestBase> query;
};

const Kind kKinds[] = {{"UserInfo",
                        Make<UserInfoQuery>,
                        "UserInfoQueryRequestReturned",
                        "UserInfoQueryRequestFailed",
                        {"28004", "28005"},
                        kUser,
                        " | post UserInfoUpdated",
                        ""},
                       {"Update",
                        Make<UpdateQuery>,
                        "UpdateQueryReturned",
                        "UpdateQueryFailed",
                        {"28006", "28007"},
                        kUpdate,
                        " | post UpdateQueryAsyncSucceeded",
                        " | post UpdateQueryAsyncFailed"}};

INSTANTIATE_TEST_SUITE_P(Kinds, QueryTest, testing::ValuesIn(kKinds), stowra_test::RowName());

TEST_P(QueryTest, ConstructorObservesBothNames) {
  const auto fresh = kind.make();
  EXPECT_EQ(TakeText(), "AddObserver " + kind.returned + " | AddObserver " + kind.failed);
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
  Record("success");
  query->OnSyncResponseSuccess();
  query->OnAsyncResponseSuccess();
  Record("failure");
  query->OnSyncResponseFail();
  query->OnAsyncResponseFail();
  EXPECT_EQ(TakeText(), std::string("success") + kind.on_success + kind.on_success + " | failure" +
                            kind.on_failure + kind.on_failure);
}

TEST_P(QueryTest, ParsingPostsNothing) {
  EXPECT_TRUE(query->ParseResponse(kind.answer));
  EXPECT_FALSE(query->ParseResponse(""));
  EXPECT_EQ(TakeText(), "");
}

TEST_P(QueryTest, SynchronousSuccessPostsWhileTheTransportExists) {
  ScriptTransfer(Reply(200, kind.answer));
  EXPECT_TRUE(query->SynchronousRequest());
  EXPECT_EQ(TakeText(), std::string("http://a/: constructed | http://a/: Download") +
                            kind.on_success + " | http://a/: deleted");
}

TEST_P(QueryTest, SynchronousFailurePostsWhenTheTransportIsGone) {
  for (const Outcome& failure :
       {NoReply(), Outcome{false, 200, kind.answer, {}}, Reply(201, kind.answer), Reply(304, ""),
        Reply(200, ""), Reply(200, "{"), Reply(200, "{}")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query->SynchronousRequest());
    EXPECT_EQ(TakeText(),
              std::string("http://a/: constructed | http://a/: Download | http://a/: deleted") +
                  kind.on_failure)
        << failure.status << failure.body;
  }
}

TEST_P(QueryTest, EmptyUrlFailsSynchronouslyAndDoesNothingAsynchronously) {
  query->Init("", nullptr);
  query->AsynchronousRequest();
  Record("nothing");
  EXPECT_FALSE(query->SynchronousRequest());
  EXPECT_EQ(TakeText(), std::string("nothing") + kind.on_failure);
}

TEST_P(QueryTest, HandsItsMessagesAndNamesToTheDelegate) {
  query->AsynchronousRequest();
  EXPECT_EQ(TakeText(), "http://a/: constructed | delegate constructed: context 0x2a, " +
                            (kind.numbers[0] + (" " + kind.returned)) + ", " +
                            (kind.numbers[1] + (" " + kind.failed)) +
                            " | http://a/: DownloadWithDelegate, user data null");
}

TEST_P(QueryTest, AsynchronousEndPostsItsOutcome) {
  const std::string returned = "post " + kind.returned + " 0x2a";
  EXPECT_EQ(EffectsOf(Reply(200, kind.answer)), returned + kind.on_success);
  for (const Outcome& failure : {Reply(500, kind.answer), Reply(200, ""), Reply(200, "{}")}) {
    EXPECT_EQ(EffectsOf(failure), returned + kind.on_failure) << failure.status << failure.body;
  }
  EXPECT_EQ(EffectsOf(NoReply()), "post " + kind.failed + " 0x2a" + kind.on_failure);
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

class UpdateQueryTest : public SubstituteTest {
 protected:
  UpdateQueryTest() {
    query.Init("http://a/", nullptr);
    EXPECT_TRUE(query.ParseResponse(kUpdate));
  }

  UpdateQuery query;
};

TEST_F(UpdateQueryTest, RecordsHaveTheirDefaults) {
  const UpdateQuery fresh;
  EXPECT_TRUE(fresh.current_version_.empty() && fresh.expire_version_.empty());
  EXPECT_THAT(fresh.data_files_, IsEmpty());
  EXPECT_EQ(Fields(fresh.message_), std::make_tuple(-1, 1, 430, 540, "", ""));
  EXPECT_EQ(Fields(ovrant::webservices::DataFileData()), std::make_tuple(-1, "", ""));
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
