// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <type_traits>
#include <vector>

#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

static_assert(std::has_virtual_destructor_v<InternetData>);
static_assert(std::has_virtual_destructor_v<InternetDataDelegate>);

TEST(InitialState, FreshTransportHoldsNoResponse) { ExpectFailureState(InternetData(Text(""))); }

TEST(InitialState, MembersLieInTheOrderOfTheBinaryInterface) {
  const InternetData transport(Text(""));
  std::vector<const void*> members = ovrant::internet::InternetDataTestPeer::Members(transport);
  members.insert(members.begin(), &transport);
  EXPECT_TRUE(std::is_sorted(members.begin(), members.end(), std::less_equal<const void*>()));
  static_assert(std::is_same_v<decltype(transport.received_data()), unsigned char*>);
  static_assert(std::is_same_v<decltype(transport.received_data_length()), unsigned long>);
  static_assert(std::is_same_v<decltype(transport.status_code()), int>);
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
