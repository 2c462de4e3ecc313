// SPDX-License-Identifier: MIT
// WebServiceRequestBase::AsynchronousRequest and the handling of its end.

#include <memory>
#include <new>
#include <stdexcept>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

// The effects of a start.
constexpr char kStart[] =
    "http://a/: constructed | delegate constructed: context 0x2a, 7 Returned, 8 Failed | "
    "http://a/: DownloadWithDelegate, user data null";

class RequestAsyncTest : public SubstituteTest {
 protected:
  RequestAsyncTest() : request(new RecordingRequest) {
    request->AddNotifications();
    request->Init("http://a/", Address(0x2a));
    TakeEffects();
  }

  // Starts a request and drops the effects of the start.
  void Start() {
    request->AsynchronousRequest();
    TakeEffects();
  }

  // The same with its end.
  void StartAndEnd(const Outcome& outcome) {
    Start();
    EXPECT_TRUE(EndTransfer("http://a/", outcome));
    TakeEffects();
  }

  std::unique_ptr<RecordingRequest> request;
};

TEST_F(RequestAsyncTest, ASecondRequestDropsTheFirstTransferBeforeItStarts) {
  Start();
  request->Init("http://b/", nullptr);
  request->AsynchronousRequest();
  EXPECT_EQ(TakeText(),
            "delegate deleted | http://a/: deleted | http://b/: constructed | "
            "delegate constructed: context null, 7 Returned, 8 Failed | "
            "http://b/: DownloadWithDelegate, user data null");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, "")));
  EXPECT_TRUE(EndTransfer("http://b/", Reply(200, "b")));
  EXPECT_EQ(TakeText(), "post Returned | ParseResponse 'b' | OnAsyncResponseSuccess");
}

TEST_F(RequestAsyncTest, ASecondRequestDropsAnEndedTransferToo) {
  StartAndEnd(Reply(404, ""));
  request->AsynchronousRequest();
  EXPECT_EQ(TakeText(), std::string("delegate deleted | http://a/: deleted | ") + kStart);
}

TEST_F(RequestAsyncTest, EmptyUrlKeepsTheTransferBefore) {
  Start();
  const auto* const transport = request->internet_data_.get();
  const auto* const delegate = request->delegate_.get();
  request->Init("", nullptr);
  request->AsynchronousRequest();
  EXPECT_EQ(request->internet_data_.get(), transport);
  EXPECT_EQ(request->delegate_.get(), delegate);
  EXPECT_EQ(TakeText(), "");

  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, "a")));
  EXPECT_EQ(TakeText(), "post Returned 0x2a | ParseResponse 'a' | OnAsyncResponseSuccess");
}

TEST_F(RequestAsyncTest, ConstructsBothThenStartsWhateverThatGives) {
  SetStartsInBackground(false);
  request->AsynchronousRequest();
  EXPECT_EQ(TakeText(), kStart);
  EXPECT_NE(request->internet_data_, nullptr);
  EXPECT_NE(request->delegate_, nullptr);
}

TEST_F(RequestAsyncTest, EachEndRunsItsHook) {
  for (const End& end : AllEnds()) {
    Start();
    request->accepts_body = end.accepts_body;
    EXPECT_TRUE(EndTransfer("http://a/", end.outcome));
    EXPECT_EQ(TakeText(), (end.outcome.received ? "post Returned 0x2a | " : "post Failed 0x2a | ") +
                              end.parsing +
                              (end.succeeds ? "OnAsyncResponseSuccess" : "OnAsyncResponseFail"))
        << end.outcome.status;
  }
}

TEST_F(RequestAsyncTest, NamesAreComparedByContent) {
  StartAndEnd(Reply(200, "body"));

  Post("Returned");
  Post("Failed");
  EXPECT_EQ(TakeText(),
            "post Returned 0x99 | ParseResponse 'body' | OnAsyncResponseSuccess | "
            "post Failed 0x99 | OnAsyncResponseFail");
}

TEST_F(RequestAsyncTest, OtherNamesAreIgnored) {
  StartAndEnd(Reply(200, "body"));
  for (const char* const name :
       {"", "returned", "Return", "Returned ", "Fail", "Failed2", "UserInfoQueryRequestReturned",
        "UpdateQueryFailed", "ExtensionStoreStatusRequestReturned"}) {
    request->OnNotification(name, nullptr);
    EXPECT_EQ(TakeText(), "") << name;
  }
}

TEST_F(RequestAsyncTest, ReturnedNameIsIgnoredWithoutATransport) {
  Post("Returned");
  EXPECT_EQ(TakeText(), "post Returned 0x99");
  Start();
  request->CleanUpRequest();
  TakeEffects();
  Post("Returned");
  EXPECT_EQ(TakeText(), "post Returned 0x99");
}

TEST_F(RequestAsyncTest, FailedNameRunsTheHookWithoutATransport) {
  Post("Failed");
  EXPECT_EQ(TakeText(), "post Failed 0x99 | OnAsyncResponseFail");
}

// One notification never runs two hooks.
TEST_F(RequestAsyncTest, OneNameForBothEndsCountsAsReturned) {
  request->failed_notification_ = request->returned_notification_;
  Start();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(500, "")));
  EXPECT_EQ(TakeText(), "post Returned 0x2a | OnAsyncResponseFail");
}

TEST_F(RequestAsyncTest, HookOfAFailureAtOnceRunsOnce) {
  SetFailsAtOnce(true);
  request->in_hook = [] { throw std::bad_alloc(); };
  EXPECT_THROW(request->AsynchronousRequest(), std::bad_alloc);
  EXPECT_EQ(TakeText(), std::string(kStart) + " | post Failed 0x2a | OnAsyncResponseFail");
}

TEST_F(RequestAsyncTest, HookPassesItsExceptionToThePost) {
  for (const Outcome& outcome : {Reply(200, "body"), Reply(500, ""), NoReply()}) {
    Start();
    request->in_hook = [] { throw std::runtime_error("hook"); };
    EXPECT_THROW(EndTransfer("http://a/", outcome), std::runtime_error);
  }
}

#ifdef NDEBUG

// No host may do this, and a debug build aborts. A release build does not check, but nothing
// breaks.
TEST_F(RequestAsyncTest, DeletionInItsLastHookBreaksNothing) {
  for (const Outcome& outcome : {Reply(200, "body"), Reply(500, ""), NoReply()}) {
    auto* const mortal = new RecordingRequest;
    mortal->in_hook = [mortal] { delete mortal; };
    mortal->AddNotifications();
    mortal->Init("http://mortal/", nullptr);
    mortal->AsynchronousRequest();
    request->RemoveNotifications();
    TakeEffects();
    EXPECT_TRUE(EndTransfer("http://mortal/", outcome));
    EXPECT_THAT(TakeEffects(),
                testing::IsSupersetOf({"delegate deleted", "http://mortal/: deleted"}));
  }
}

#endif

}  // namespace
}  // namespace stowra_substitute
