// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/request_headers.h"

#include <gtest/gtest.h>

namespace stowra_test {
namespace {

using ovrant::internet::SetHeader;
using ovrant::utils::StringMap;

TEST(RequestHeaders, SettingReplacesTheNameInAnyCase) {
  StringMap headers = {{"X-One", "1"}, {"x-one", "2"}, {"X-Two", "3"}};
  SetHeader("X-ONE", "4", headers);
  EXPECT_EQ(headers, (StringMap{{"X-ONE", "4"}, {"X-Two", "3"}}));
}

TEST(RequestHeaders, ValueOfTheMapItselfMayBeSet) {
  StringMap headers = {{"x-one", "1"}};
  SetHeader(headers.begin()->first, headers.begin()->second, headers);
  EXPECT_EQ(headers, (StringMap{{"x-one", "1"}}));
}

}  // namespace
}  // namespace stowra_test
