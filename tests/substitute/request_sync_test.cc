// SPDX-License-Identifier: MIT
// WebServiceRequestBase::SynchronousRequest.

#include <new>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

class RequestSyncTest : public SubstituteTest {
 protected:
  RequestSyncTest() { request.Init("http://a/", Address(0x2a)); }

  void TearDown() override {
    request.CleanUpRequest();
    SubstituteTest::TearDown();
  }

  RecordingRequest request;
};

TEST_F(RequestSyncTest, TransportOutlivesTheSuccessHookAndNotTheFailureHook) {
  for (const End& end : AllEnds()) {
    request.accepts_body = end.accepts_body;
    ScriptTransfer(end.outcome);
    EXPECT_EQ(request.SynchronousRequest(), end.succeeds) << end.outcome.status;
    EXPECT_EQ(TakeText(), "http://a/: constructed | http://a/: Download | " + end.parsing +
                              (end.succeeds ? "OnSyncResponseSuccess | http://a/: deleted"
                                            : "http://a/: deleted | OnSyncResponseFail"))
        << end.outcome.status;
  }
}

TEST_F(RequestSyncTest, EmptyUrlFailsOnceAndMakesNoTransport) {
  request.Init("", nullptr);
  EXPECT_FALSE(request.SynchronousRequest());
  EXPECT_EQ(TakeText(), "OnSyncResponseFail");
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
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | http://a/: Download | ParseResponse 'first' | "
            "OnSyncResponseSuccess | http://a/: deleted | http://a/: constructed | "
            "http://a/: Download | http://a/: deleted | OnSyncResponseFail");

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "third")));
  EXPECT_EQ(TakeText(), "post Returned 0x2a | ParseResponse 'third' | OnAsyncResponseSuccess");
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
