// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <type_traits>
#include <vector>

#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using Peer = ovrant::internet::InternetDataTestPeer;

TEST(InitialState, FreshTransportHoldsItsUrlAndNoResponse) {
  const InternetData transport(Text("http://example.invalid/"));
  EXPECT_EQ(Peer::Url(transport), Text("http://example.invalid/"));
  ExpectFailureState(transport);
}

TEST(InitialState, SettingsHaveTheirInitialValues) {
  const InternetData transport(Text("http://example.invalid/"));
  EXPECT_FALSE(Peer::FirstFlag(transport));
  EXPECT_EQ(Peer::FloatSetting(transport), 30.0F);
  EXPECT_EQ(Peer::IntegerSetting(transport), -1);
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(Peer::TextSetting(transport, i).empty());
  EXPECT_TRUE(Peer::FirstMap(transport).empty());
  EXPECT_FALSE(Peer::SecondFlag(transport));
  EXPECT_FALSE(Peer::HasPointers(transport));
  EXPECT_FALSE(Peer::LastFlag(transport, 0));
  EXPECT_TRUE(Peer::LastFlag(transport, 1));
}

TEST(InitialState, MembersLieInTheOrderOfTheBinaryInterface) {
  const InternetData transport(Text(""));
  std::vector<const void*> members = Peer::Members(transport);
  members.insert(members.begin(), &transport);
  EXPECT_TRUE(std::is_sorted(members.begin(), members.end(), std::less_equal<const void*>()));
  static_assert(std::is_same_v<decltype(transport.received_data()), unsigned char*>);
  static_assert(std::is_same_v<decltype(transport.received_data_length()), unsigned long>);
  static_assert(std::is_same_v<decltype(transport.status_code()), int>);
}

TEST(InitialState, CopiesTheUrl) {
  ovrant_ustring url = Text("http://example.invalid/");
  const InternetData transport(url);
  url.clear();
  EXPECT_EQ(Peer::Url(transport), Text("http://example.invalid/"));
}

// Notes its destruction.
template <typename Base>
class Derived final : public Base {
 public:
  template <typename... Args>
  explicit Derived(bool& destroyed, Args... args) : Base(args...), destroyed_(destroyed) {}
  ~Derived() override { destroyed_ = true; }

 private:
  bool& destroyed_;
};

TEST(InitialState, DestructorsAreVirtual) {
  bool transport_destroyed = false;
  bool delegate_destroyed = false;
  std::unique_ptr<InternetData>(new Derived<InternetData>(transport_destroyed, Text("")));
  std::unique_ptr<InternetDataDelegate>(
      new Derived<InternetDataDelegate>(delegate_destroyed, nullptr, 0U, kReturned, 0U, kFailed));
  EXPECT_TRUE(transport_destroyed);
  EXPECT_TRUE(delegate_destroyed);
}

TEST(InitialState, DelegateCarriesWhatItWasGiven) {
  int context = 0;
  const InternetDataDelegate delegate(&context, 28004, kReturned, 28005, kFailed);
  EXPECT_EQ(delegate.context(), &context);
  EXPECT_EQ(delegate.returned_message(), 28004U);
  EXPECT_STREQ(delegate.returned_notification(), kReturned);
  EXPECT_EQ(delegate.failed_message(), 28005U);
  EXPECT_STREQ(delegate.failed_notification(), kFailed);
}

}  // namespace
}  // namespace stowra_test
