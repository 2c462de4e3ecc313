// SPDX-License-Identifier: MIT
// The request base apart from its transfers: construction, Init, registration, the base's hooks.

#include <memory>
#include <type_traits>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::WebServiceRequestBase;

class RequestStateTest : public SubstituteTest {};

TEST_F(RequestStateTest, IsNotCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<WebServiceRequestBase>);
  EXPECT_FALSE(std::is_copy_assignable_v<WebServiceRequestBase>);
}

TEST_F(RequestStateTest, ConstructorSetsNoUrlAndRegistersNothing) {
  const RecordingRequest request;
  EXPECT_TRUE(request.url_.empty());
  EXPECT_EQ(request.context_, nullptr);
  EXPECT_EQ(request.internet_data_, nullptr);
  EXPECT_EQ(request.delegate_, nullptr);
  EXPECT_EQ(TakeText(), "");
}

TEST_F(RequestStateTest, InitSetsUrlAndContextAndNothingElse) {
  RecordingRequest request;
  request.Init("http://a/", Address(0x2a));
  EXPECT_EQ(request.url_, "http://a/");
  EXPECT_EQ(request.context_, Address(0x2a));
  EXPECT_EQ(request.returned_message_, 7U);
  EXPECT_EQ(request.failed_message_, 8U);
  EXPECT_STREQ(request.returned_notification_, "Returned");
  EXPECT_STREQ(request.failed_notification_, "Failed");
  EXPECT_EQ(TakeText(), "");
}

TEST_F(RequestStateTest, InitRetargetsAndLeavesARunningTransferAlone) {
  RecordingRequest request;
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

TEST_F(RequestStateTest, ObservesTheReturnedNameThenTheFailedName) {
  RecordingRequest request;
  request.AddNotifications();
  EXPECT_EQ(TakeText(), "AddObserver Returned | AddObserver Failed");
  EXPECT_EQ(CountRegistrations(), 2);
}

TEST_F(RequestStateTest, RemovalTakesItOffBothNames) {
  RecordingRequest request;
  request.AddNotifications();
  request.RemoveNotifications();
  EXPECT_EQ(CountRegistrations(), 0);
  TakeEffects();

  Post("Failed");
  EXPECT_EQ(TakeText(), "post Failed 0x99");
}

TEST_F(RequestStateTest, RemovalIsOneCallAndSafeWithoutRegistration) {
  RecordingRequest request;
  request.RemoveNotifications();
  EXPECT_EQ(TakeText(), "RemoveObserver");
}

TEST_F(RequestStateTest, DestructorOfTheBaseRemovesTheObserver) {
  { RecordingRequest request; }
  EXPECT_EQ(TakeText(), "RemoveObserver");
}

TEST_F(RequestStateTest, DestructorDeletesDelegateThenTransportThenRemovesTheObserver) {
  auto request = std::make_unique<RecordingRequest>();
  request->AddNotifications();
  request->Init("http://a/", nullptr);
  request->AsynchronousRequest();
  TakeEffects();

  request.reset();
  EXPECT_EQ(TakeText(), "delegate deleted | http://a/: deleted | RemoveObserver");
  EXPECT_FALSE(EndTransfer("http://a/", Reply(200, "")));
  EXPECT_EQ(TakeText(), "");
}

TEST_F(RequestStateTest, CleanUpDeletesDelegateThenTransportOnce) {
  RecordingRequest request;
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
  RecordingRequest request;
  EXPECT_FALSE(request.WebServiceRequestBase::ParseResponse("{}"));
  EXPECT_FALSE(request.WebServiceRequestBase::ParseResponse(""));
  request.WebServiceRequestBase::OnSyncResponseSuccess();
  request.WebServiceRequestBase::OnSyncResponseFail();
  request.WebServiceRequestBase::OnAsyncResponseSuccess();
  request.WebServiceRequestBase::OnAsyncResponseFail();
  EXPECT_EQ(TakeText(), "");
}

}  // namespace
}  // namespace stowra_substitute
