// SPDX-License-Identifier: MIT
// Requests of both queries: construction, what is posted and when, what each failure keeps.

#include <memory>
#include <ostream>
#include <string>

#include "tests/services/fields.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/started.h"
#include "tests/support/text.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::WebServiceRequestBase;
using stowra_test::Fields;
using testing::IsEmpty;

struct Kind {
  const char* name;
  std::unique_ptr<WebServiceRequestBase> (*make)();
  std::string returned;  // the name that the delegate posts
  std::string failed;
  const char* numbers[2];  // of these
  const char* on_failure;  // what is posted, with " | " before it
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

  const Kind& kind;
  std::unique_ptr<WebServiceRequestBase> query;
};

const Kind kKinds[] = {{"UserInfo",
                        Make<UserInfoQuery>,
                        "UserInfoQueryRequestReturned",
                        "UserInfoQueryRequestFailed",
                        {"28004", "28005"},
                        ""},
                       {"Update",
                        Make<UpdateQuery>,
                        "UpdateQueryReturned",
                        "UpdateQueryFailed",
                        {"28006", "28007"},
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
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, "")));
  EXPECT_EQ(TakeText(), "");
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
}

}  // namespace
}  // namespace stowra_substitute
