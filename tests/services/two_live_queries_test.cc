// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <future>
#include <string>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::webservices::UserInfoQuery;

class UpdateWatcher : public ovrant::IObserver {
 public:
  UpdateWatcher() {
    CNotificationCenter::Default()->AddObserver(UserInfoQuery::kUserInfoUpdatedNotification, this);
  }
  ~UpdateWatcher() override { CNotificationCenter::Default()->RemoveObserver(this); }

  void OnNotification(const char* /*name*/, void* /*payload*/) override { updated_.set_value(); }
  using IObserver::OnNotification;

  void Wait() { updated_.get_future().wait(); }

 private:
  std::promise<void> updated_;
};

TEST(TwoLiveQueriesTest, OneRequestFillsOnlyTheQueryThatMadeIt) {
  const std::string body = R"({"uid":"7","email":"a@b.example","vkr_id":"v"})";
  const RawServer server([&body](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                     "\r\n\r\n" + body);
  });
  UserInfoQuery idle_before;
  UserInfoQuery query;
  UserInfoQuery idle_after;
  UpdateWatcher watcher;
  query.Init(server.Url().c_str(), nullptr);
  query.AsynchronousRequest();
  watcher.Wait();
  EXPECT_EQ(query.GetUserInfoValue(UserInfoQuery::kUserIdKey), "7");
  EXPECT_EQ(idle_before.GetUserInfoValue(UserInfoQuery::kUserIdKey), "");
  EXPECT_EQ(idle_after.GetUserInfoValue(UserInfoQuery::kUserIdKey), "");
}

}  // namespace
}  // namespace stowra_test
