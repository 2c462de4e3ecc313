// SPDX-License-Identifier: MIT
// The request base apart from its background transfers: construction, Init, registration, the
// base's hooks, SynchronousRequest.

#include <memory>
#include <new>
#include <type_traits>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::WebServiceRequestBase;

static_assert(!std::is_copy_constructible_v<WebServiceRequestBase>);
static_assert(!std::is_copy_assignable_v<WebServiceRequestBase>);

class RequestStateTest : public SubstituteTest {
 protected:
  RecordingRequest request;
};

TEST_F(RequestStateTest, ConstructorSetsNoUrlAndRegistersNothing) {
  EXPECT_TRUE(request.url_.empty());
  EXPECT_EQ(request.context_, nullptr);
  EXPECT_EQ(request.internet_data_, nullptr);
  EXPECT_EQ(request.delegate_, nullptr);
  EXPECT_EQ(TakeText(), "");
}

TEST_F(RequestStateTest, InitRetargetsAndLeavesARunningTransferAlone) {
  request.AddNotifications();
  request.Init("http://a/", Address(0x2a));
  request.AsynchronousRequest();
  TakeEffects();

  request.Init("http://b/", nullptr);
  EXPECT_EQ(request.url_, "http://b/");
  EXPECT_EQ(request.context_, nullptr);
  EXPECT_NE(request.internet_data_, nullptr);
  EXPECT_NE(request.delegate_, nullptr);
  EXPECT_EQ(TakeText(), "");

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "body")));
  EXPECT_EQ(TakeText(), "post Returned 0x2a | ParseResponse 'body' | OnAsyncResponseSuccess");
}

TEST_F(RequestStateTest, RemovalIsOneCallAndSafeWithoutRegistration) {
  request.RemoveNotifications();
  EXPECT_EQ(TakeText(), "RemoveObserver");
}

TEST_F(RequestStateTest, DestructorDeletesDelegateThenTransportThenRemovesTheObserver) {
  auto doomed = std::make_unique<RecordingRequest>();
  doomed->AddNotifications();
  doomed->Init("http://a/", nullptr);
  doomed->AsynchronousRequest();
  TakeEffects();

  doomed.reset();
  EXPECT_EQ(TakeText(), "delegate deleted | http://a/: deleted | RemoveObserver");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, "")));
  EXPECT_EQ(TakeText(), "");
}

TEST_F(RequestStateTest, CleanUpDeletesDelegateThenTransportOnce) {
  request.Init("http://a/", nullptr);
  request.AsynchronousRequest();
  TakeEffects();

  request.CleanUpRequest();
  EXPECT_EQ(request.delegate_, nullptr);
  EXPECT_EQ(request.internet_data_, nullptr);
  EXPECT_EQ(TakeText(), "delegate deleted | http://a/: deleted");

  request.CleanUpRequest();
  EXPECT_EQ(TakeText(), "");
  EXPECT_EQ(request.url_, "http://a/");
}

TEST_F(RequestStateTest, HooksOfTheBaseDoNothingAndItRefusesEveryBody) {
  EXPECT_FALSE(request.WebServiceRequestBase::ParseResponse("{}"));
  EXPECT_FALSE(request.WebServiceRequestBase::ParseResponse(""));
  request.WebServiceRequestBase::OnSyncResponseSuccess();
  request.WebServiceRequestBase::OnSyncResponseFail();
  request.WebServiceRequestBase::OnAsyncResponseSuccess();
  request.WebServiceRequestBase::OnAsyncResponseFail();
  EXPECT_EQ(TakeText(), "");
}

class RequestSyncTest : public SubstituteTest {
 protected:
  RequestSyncTest() { request.Init("http://a/", Address(0x2a)); }

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
