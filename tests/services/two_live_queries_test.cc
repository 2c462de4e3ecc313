// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/services/user_info_query.h"
#include "tests/support/notification_recorder.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::webservices::UserInfoQuery;

TEST(TwoLiveQueriesTest, OneRequestFillsOnlyTheQueryThatMadeIt) {
  const std::string body = R"({"uid":"7","email":"a@b.example","vkr_id":"v"})";
  const RawServer server([&body](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                     "\r\n\r\n" + body);
  });
  UserInfoQuery idle_before;
  UserInfoQuery query;
  UserInfoQuery idle_after;
  NotificationRecorder recorder({UserInfoQuery::kUserInfoUpdatedNotification});
  query.Init(server.Url().c_str(), nullptr);
  query.AsynchronousRequest();
  ASSERT_TRUE(recorder.WaitFor(1));
  EXPECT_EQ(query.GetUserInfoValue(UserInfoQuery::kUserIdKey), "7");
  EXPECT_EQ(idle_before.GetUserInfoValue(UserInfoQuery::kUserIdKey), "");
  EXPECT_EQ(idle_after.GetUserInfoValue(UserInfoQuery::kUserIdKey), "");
}

}  // namespace
}  // namespace stowra_test
