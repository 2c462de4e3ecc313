// SPDX-License-Identifier: MIT
// Deletes the objects of a background transfer in both orders.

#ifndef TESTS_PLATFORM_HTTP_DELETION_FIXTURE_H_
#define TESTS_PLATFORM_HTTP_DELETION_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {

// Which of the two objects goes first.
enum class Order { kDelegateFirst, kTransportFirst };

inline std::string NameOfOrder(const testing::TestParamInfo<Order>& test) {
  return test.param == Order::kDelegateFirst ? "DelegateFirst" : "TransportFirst";
}

class DeletionFixture : public TransportTest, public ::testing::WithParamInterface<Order> {
 protected:
  static void DeleteFirst(Background& background) {
    if (GetParam() == Order::kDelegateFirst) {
      background.delegate.reset();
    } else {
      background.transport.reset();
    }
  }
  static void DeleteBoth(Background& background) {
    DeleteFirst(background);
    background.delegate.reset();
    background.transport.reset();
  }

  // Starts a transfer and waits until the server has its request.
  static void StartAt(const RawServer& server, Background& background) {
    ASSERT_TRUE(background.Start());
    ASSERT_TRUE(server.WaitForRequests(1));
  }

  const RawServer hello_{Always(Response(200, "hello"))};
};

#define IN_BOTH_ORDERS(Suite) \
  INSTANTIATE_TEST_SUITE_P(   \
      , Suite, testing::Values(Order::kDelegateFirst, Order::kTransportFirst), NameOfOrder)

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_DELETION_FIXTURE_H_
