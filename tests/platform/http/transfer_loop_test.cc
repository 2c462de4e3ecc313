// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/transfer_loop.h"

#include <gtest/gtest.h>

#include <utility>

#include "common_stowraapi/platform/http/exchange.h"
#include "common_stowraapi/platform/http/message.h"

namespace stowra_test {
namespace {

using ovrant::internet::HttpExchange;
using ovrant::internet::HttpRequest;
using ovrant::internet::TransferLoop;

// An exchange that cannot be made. It ends as soon as it starts.
HttpExchange Impossible() {
  HttpRequest request;
  request.url = "ftp://127.0.0.1/";
  return HttpExchange(std::move(request), nullptr);
}

TEST(TransferLoopTest, DoesNotReturnAnExchangeDroppedAfterItsEnd) {
  TransferLoop loop;
  HttpExchange dropped = Impossible();
  HttpExchange kept = Impossible();
  loop.Start(dropped);
  loop.Start(kept);
  loop.Drop(dropped);
  EXPECT_EQ(loop.size(), 1U);
  EXPECT_EQ(loop.NextEnded(), &kept);
  EXPECT_EQ(loop.NextEnded(), nullptr);
  EXPECT_TRUE(dropped.ended());
}

}  // namespace
}  // namespace stowra_test
