// WebServiceRequestBase::SynchronousRequest.

#include <new>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RequestSyncTest : public SubstituteTest {
 protected:
  RequestSyncTest() { request.Init("http://a/", Address(0x2a)); }

  void TearDown() override {
    request.CleanUpRequest();
    SubstituteTest::TearDown();
  }

  RecordingRequest request;
};

TEST_F(RequestSyncTest, SuccessHookRunsWhileTheTransportExists) {
  ScriptTransfer(Reply(200, "body"));
  EXPECT_TRUE(request.SynchronousRequest());
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed", "http://a/: Download", "ParseResponse 'body'",
                          "OnSyncResponseSuccess", "http://a/: deleted"));
}

TEST_F(RequestSyncTest, RefusedBodyFailsWhenTheTransportIsGone) {
  request.accepts_body = false;
  ScriptTransfer(Reply(200, "body"));
  EXPECT_FALSE(request.SynchronousRequest());
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed", "http://a/: Download", "ParseResponse 'body'",
                          "http://a/: deleted", "OnSyncResponseFail"));
}

TEST_F(RequestSyncTest, FailedTransferFailsWhenTheTransportIsGoneWhateverItsStatus) {
  for (const int status : {0, 200, 503}) {
    ScriptTransfer(Outcome{false, status, "body", {}});
    EXPECT_FALSE(request.SynchronousRequest());
    EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed", "http://a/: Download",
                                           "http://a/: deleted", "OnSyncResponseFail"))
        << status;
  }
}

TEST_F(RequestSyncTest, AnyStatusBut200FailsWithoutParsing) {
  for (const int status : {-200, 0, 100, 199, 201, 202, 204, 206, 299, 302, 304, 404, 500}) {
    ScriptTransfer(Reply(status, "body"));
    EXPECT_FALSE(request.SynchronousRequest());
    EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed", "http://a/: Download",
                                           "http://a/: deleted", "OnSyncResponseFail"))
        << status;
  }
}

TEST_F(RequestSyncTest, EmptyUrlFailsOnceAndMakesNoTransport) {
  request.Init("", nullptr);
  EXPECT_FALSE(request.SynchronousRequest());
  EXPECT_THAT(TakeEffects(), ElementsAre("OnSyncResponseFail"));
}

TEST_F(RequestSyncTest, EmptyBodyIsParsed) {
  ScriptTransfer(Reply(200, ""));
  EXPECT_TRUE(request.SynchronousRequest());
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed", "http://a/: Download", "ParseResponse ''",
                          "OnSyncResponseSuccess", "http://a/: deleted"));
}

// The bytes end where the length says: no terminator follows them, and a NUL does not end them.
TEST_F(RequestSyncTest, BodyIsUtf8OfTheGivenLength) {
  const std::string body("\xC3\xA9\0\xF0\x9F\x98\x80!", 8);
  ScriptTransfer(Reply(200, body));
  EXPECT_TRUE(request.SynchronousRequest());
  EXPECT_THAT(TakeEffects(), testing::Contains("ParseResponse '" + body + "'"));
}

TEST_F(RequestSyncTest, LeavesARunningTransferAlone) {
  request.AddNotifications();
  request.AsynchronousRequest();
  const auto* const transport = request.internet_data_.get();
  const auto* const delegate = request.delegate_.get();
  TakeEffects();

  ScriptTransfer(Reply(200, "first"));
  EXPECT_TRUE(request.SynchronousRequest());
  ScriptTransfer(Reply(500, "second"));
  EXPECT_FALSE(request.SynchronousRequest());
  EXPECT_EQ(request.internet_data_.get(), transport);
  EXPECT_EQ(request.delegate_.get(), delegate);
  EXPECT_THAT(TakeEffects(),
              ElementsAre("http://a/: constructed", "http://a/: Download", "ParseResponse 'first'",
                          "OnSyncResponseSuccess", "http://a/: deleted", "http://a/: constructed",
                          "http://a/: Download", "http://a/: deleted", "OnSyncResponseFail"));

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "third")));
  EXPECT_THAT(TakeEffects(), ElementsAre("SendNotification Returned, payload 0x2a",
                                         "ParseResponse 'third'", "OnAsyncResponseSuccess"));
  request.RemoveNotifications();
}

TEST_F(RequestSyncTest, MakesNoTransportOrDelegateOfItsOwn) {
  ScriptTransfer(Reply(200, "body"));
  request.in_hook = [this] {
    EXPECT_EQ(request.internet_data_, nullptr);
    EXPECT_EQ(request.delegate_, nullptr);
  };
  EXPECT_TRUE(request.SynchronousRequest());
  EXPECT_EQ(request.internet_data_, nullptr);
  EXPECT_EQ(request.delegate_, nullptr);
}

TEST_F(RequestSyncTest, RunsAgainAfterAFailure) {
  ScriptTransfer(NoReply());
  EXPECT_FALSE(request.SynchronousRequest());
  EXPECT_EQ(request.url_, "http://a/");
  ScriptTransfer(Reply(200, "body"));
  EXPECT_TRUE(request.SynchronousRequest());
}

TEST_F(RequestSyncTest, HookPassesItsExceptionToTheCaller) {
  request.in_hook = [] { throw std::bad_alloc(); };
  for (const bool accepts : {true, false}) {
    request.accepts_body = accepts;
    ScriptTransfer(Reply(200, "body"));
    TakeEffects();
    EXPECT_THROW(request.SynchronousRequest(), std::bad_alloc);
    EXPECT_THAT(TakeEffects(),
                testing::Contains(accepts ? "OnSyncResponseSuccess" : "OnSyncResponseFail"));
    EXPECT_EQ(CountTransports(), 0);
  }
}

TEST_F(RequestSyncTest, MayBeDeletedInItsLastHook) {
  for (const bool accepts : {true, false}) {
    auto* const mortal = new RecordingRequest;
    mortal->accepts_body = accepts;
    mortal->in_hook = [mortal] { delete mortal; };
    mortal->Init("http://a/", nullptr);
    ScriptTransfer(Reply(200, "body"));
    EXPECT_EQ(mortal->SynchronousRequest(), accepts);
  }
}

}  // namespace
}  // namespace stowra_substitute
