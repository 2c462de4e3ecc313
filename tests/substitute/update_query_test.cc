// Requests of UpdateQuery: construction, what is posted and when, what each failure keeps.

#include "common_stowraapi/services/update_query.h"

#include <memory>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::UpdateQuery;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAnswer[] =
    R"({"update":{"current_version":"2","expire_version":"1"},"datafiles":[{"version":3}]})";

// Opens the members that it has from its base.
class OpenQuery : public UpdateQuery {
 public:
  using UpdateQuery::context_;
  using UpdateQuery::delegate_;
  using UpdateQuery::failed_message_;
  using UpdateQuery::failed_notification_;
  using UpdateQuery::internet_data_;
  using UpdateQuery::returned_message_;
  using UpdateQuery::returned_notification_;
  using UpdateQuery::url_;
};

class UpdateQueryTest : public SubstituteTest {
 protected:
  UpdateQueryTest() : query(new UpdateQuery) {
    query->Init("http://a/", Address(0x2a));
    TakeEffects();
  }

  void TearDown() override {
    query.reset();
    SubstituteTest::TearDown();
  }

  std::unique_ptr<UpdateQuery> query;
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
  const MessageData message;
  EXPECT_EQ(message.id, -1);
  EXPECT_EQ(message.max_shows, 1);
  EXPECT_EQ(message.width, 430);
  EXPECT_EQ(message.height, 540);
  EXPECT_TRUE(message.title.empty());
  EXPECT_TRUE(message.url.empty());
  const DataFileData file;
  EXPECT_EQ(file.version, -1);
  EXPECT_TRUE(file.filename.empty());
  EXPECT_TRUE(file.url.empty());
}

TEST_F(UpdateQueryTest, DataFilesAreValues) {
  DataFileData file;
  file.version = 4;
  file.filename = "name";
  file.url = "url";
  DataFileData copy(file);
  DataFileData assigned;
  assigned = file;
  file.filename = "changed";
  for (const DataFileData& one : {copy, assigned}) {
    EXPECT_EQ(one.version, 4);
    EXPECT_EQ(one.filename, "name");
    EXPECT_EQ(one.url, "url");
  }
}

TEST_F(UpdateQueryTest, ConstructorSetsMessagesAndNamesAndObservesThem) {
  const OpenQuery fresh;
  EXPECT_THAT(TakeEffects(),
              ElementsAre("AddObserver UpdateQueryReturned", "AddObserver UpdateQueryFailed"));
  EXPECT_EQ(fresh.returned_message_, 28006U);
  EXPECT_EQ(fresh.failed_message_, 28007U);
  EXPECT_STREQ(fresh.returned_notification_, "UpdateQueryReturned");
  EXPECT_STREQ(fresh.failed_notification_, "UpdateQueryFailed");
  EXPECT_TRUE(fresh.url_.empty());
  EXPECT_EQ(fresh.context_, nullptr);
  EXPECT_EQ(fresh.internet_data_, nullptr);
  EXPECT_EQ(fresh.delegate_, nullptr);
  EXPECT_TRUE(fresh.current_version_.empty());
  EXPECT_TRUE(fresh.expire_version_.empty());
  EXPECT_EQ(fresh.message_.id, -1);
  EXPECT_EQ(fresh.message_.max_shows, 1);
  EXPECT_EQ(fresh.message_.width, 430);
  EXPECT_EQ(fresh.message_.height, 540);
  EXPECT_THAT(fresh.data_files_, IsEmpty());
}

TEST_F(UpdateQueryTest, DestructorRemovesTheObserverBeforeAnythingElse) {
  query->AsynchronousRequest();
  TakeEffects();
  query.reset();
  EXPECT_THAT(TakeEffects(), ElementsAre("RemoveObserver", "delegate deleted", "http://a/: deleted",
                                         "RemoveObserver"));
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, kAnswer)));
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

TEST_F(UpdateQueryTest, Hooks) {
  query->OnSyncResponseSuccess();
  EXPECT_THAT(TakeEffects(),
              ElementsAre("SendNotification UpdateQueryAsyncSucceeded, payload null"));
  query->OnAsyncResponseSuccess();
  EXPECT_THAT(TakeEffects(),
              ElementsAre("SendNotification UpdateQueryAsyncSucceeded, payload null"));
  query->OnSyncResponseFail();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UpdateQueryAsyncFailed, payload null"));
  query->OnAsyncResponseFail();
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UpdateQueryAsyncFailed, payload null"));
}

TEST_F(UpdateQueryTest, SynchronousSuccessPostsWhileTheTransportExists) {
  ovrant::utils::ovrant_ustring seen;
  const Host host("UpdateQueryAsyncSucceeded", [&] { seen = query->current_version_; });
  ScriptTransfer(Reply(200, kAnswer));
  EXPECT_TRUE(query->SynchronousRequest());
  EXPECT_EQ(seen, "2");
  EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed", "http://a/: Download",
                                         "SendNotification UpdateQueryAsyncSucceeded, payload null",
                                         "http://a/: deleted"));
}

TEST_F(UpdateQueryTest, SynchronousFailurePostsWhenTheTransportIsGone) {
  for (const Outcome& failure : {NoReply(), Outcome{false, 200, kAnswer, {}}, Reply(204, kAnswer),
                                 Reply(200, ""), Reply(200, "{}")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query->SynchronousRequest());
    EXPECT_THAT(TakeEffects(),
                ElementsAre("http://a/: constructed", "http://a/: Download", "http://a/: deleted",
                            "SendNotification UpdateQueryAsyncFailed, payload null"));
  }
}

TEST_F(UpdateQueryTest, EmptyUrlPostsAFailureSynchronouslyAndNothingAsynchronously) {
  query->Init("", nullptr);
  query->AsynchronousRequest();
  EXPECT_THAT(TakeEffects(), IsEmpty());
  EXPECT_FALSE(query->SynchronousRequest());
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UpdateQueryAsyncFailed, payload null"));
}

TEST_F(UpdateQueryTest, AsynchronousRequestHandsItsMessagesAndNamesToTheDelegate) {
  query->AsynchronousRequest();
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed",
                          "delegate constructed: context 0x2a, 28006 UpdateQueryReturned, 28007 "
                          "UpdateQueryFailed",
                          "http://a/: DownloadWithDelegate, user data null"));
}

TEST_F(UpdateQueryTest, AsynchronousSuccessPostsWhenTheResultsAreStored) {
  ovrant::utils::ovrant_ustring seen;
  const Host host("UpdateQueryAsyncSucceeded", [&] { seen = query->expire_version_; });
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, kAnswer)));
  EXPECT_EQ(seen, "1");
  EXPECT_THAT(TakeEffects(),
              ElementsAre("SendNotification UpdateQueryReturned, payload 0x2a",
                          "SendNotification UpdateQueryAsyncSucceeded, payload null"));
}

TEST_F(UpdateQueryTest, AsynchronousFailurePosts) {
  for (const Outcome& failure : {Reply(500, kAnswer), Reply(200, ""), Reply(200, "{}")}) {
    query->AsynchronousRequest();
    TakeEffects();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
    EXPECT_THAT(TakeEffects(),
                ElementsAre("SendNotification UpdateQueryReturned, payload 0x2a",
                            "SendNotification UpdateQueryAsyncFailed, payload null"));
  }
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/", NoReply()));
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UpdateQueryFailed, payload 0x2a",
                                         "SendNotification UpdateQueryAsyncFailed, payload null"));
}

TEST_F(UpdateQueryTest, ResultsWithoutAnUpdateAreStoredButReportedAsFailure) {
  query->AsynchronousRequest();
  TakeEffects();
  EXPECT_TRUE(EndTransfer("http://a/",
                          Reply(200, R"({"message":{"id":7},"datafiles":[{"version":3},{}]})")));
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification UpdateQueryReturned, payload 0x2a",
                                         "SendNotification UpdateQueryAsyncFailed, payload null"));
  EXPECT_EQ(query->message_.id, 7);
  EXPECT_EQ(query->data_files_.size(), 2U);
}

TEST_F(UpdateQueryTest, KeepsDataFilesWhenNoBodyIsParsed) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  for (const Outcome& failure : {NoReply(), Reply(404, "{}"), Reply(204, "")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query->SynchronousRequest());
    query->AsynchronousRequest();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
  }
  ASSERT_EQ(query->data_files_.size(), 1U);
  EXPECT_EQ(query->data_files_[0].version, 3);
  EXPECT_EQ(query->current_version_, "2");
  EXPECT_EQ(query->expire_version_, "1");
}

TEST_F(UpdateQueryTest, AnEmptyBodyEmptiesDataFilesAlone) {
  ASSERT_TRUE(query->ParseResponse(kAnswer));
  ScriptTransfer(Reply(200, ""));
  EXPECT_FALSE(query->SynchronousRequest());
  EXPECT_THAT(query->data_files_, IsEmpty());
  EXPECT_EQ(query->current_version_, "2");
  EXPECT_EQ(query->expire_version_, "1");
}

TEST_F(UpdateQueryTest, ParsingPostsNothing) {
  EXPECT_TRUE(query->ParseResponse(kAnswer));
  EXPECT_FALSE(query->ParseResponse(""));
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

}  // namespace
}  // namespace stowra_substitute
