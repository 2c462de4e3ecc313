// SPDX-License-Identifier: MIT
// What UserInfoQuery accepts as an answer, what it keeps of it, and when it posts.

#include <string>

#include "tests/substitute/fixture.h"
#include "tests/substitute/started.h"
#include "tests/support/text.h"

namespace stowra_substitute {
namespace {

class UserInfoParseTest : public SubstituteTest {
 protected:
  // The cached values of those keys, each with a "|" before and after it.
  std::string Values(const char* keys) const {
    std::string values = "|";
    for (const std::string& key : stowra_test::Split(keys)) {
      values += query.GetUserInfoValue(key.c_str()).utf8() + "|";
    }
    return values;
  }

  UserInfoQuery query;
};

TEST_F(UserInfoParseTest, KeepsEveryMemberUnderItsOwnName) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":"1","displayname":"Ada","email":"a@b","vkr_id":"v","locale":"en"})"));
  EXPECT_EQ(Values("uid|displayname|email|vkr_id|locale"), "|1|Ada|a@b|v|en|");
  EXPECT_EQ(Values("absent|UID|"), "||||");
}

TEST_F(UserInfoParseTest, KeepsTheOldCacheWhenTheAnswerIsUnusable) {
  ASSERT_TRUE(query.ParseResponse(R"({"uid":"1","email":"e","vkr_id":"v","x":"y"})"));
  for (const char* const body : {
           R"({"email":"2","vkr_id":"2"})",
           R"({"uid":"2","vkr_id":"2"})",
           R"({"uid":"2","email":"2"})",
           R"({"UID":"2","email":"2","vkr_id":"2"})",
           R"({"uid ":"2","email":"2","vkr_id":"2"})",
           R"({"user":{"uid":"2","email":"2","vkr_id":"2"}})",
           R"([{"uid":"2","email":"2","vkr_id":"2"}])",
           R"(["uid","email","vkr_id"])",
           R"({"uid":"2","email":"2","vkr_id":"2")",
           "{}",
           "[]",
           "",
           "  ",
           "null",
           "\"uid\"",
           "1",
       }) {
    EXPECT_FALSE(query.ParseResponse(body)) << body;
    EXPECT_EQ(Values("uid|email|vkr_id|x"), "|1|e|v|y|") << body;
  }
}

TEST_F(UserInfoParseTest, LastOfRepeatedNamesCounts) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":"1","uid":"2","email":"e","email":"","vkr_id":"v","x":"1","x":"2","x":"3"})"));
  EXPECT_EQ(Values("uid|email|x"), "|2||3|");
}

TEST_F(UserInfoParseTest, ValuesThatAreNoStringsCountAsEmpty) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":17,"email":null,"vkr_id":{"a":"b"},"t":true,"d":1.5,"l":["x"]})"));
  EXPECT_EQ(Values("uid|email|vkr_id|t|d|l"), "|||||||");
}

TEST_F(UserInfoParseTest, TextIsUnicodeInNamesAndValues) {
  EXPECT_TRUE(query.ParseResponse(
      "{\"uid\":\"\\u00e9\\ud83d\\ude00\",\"email\":\"\xC3\xA9\xF0\x9F\x98\x80\",\"vkr_id\":\"a"
      "\\\"\\\\\\/\\n\",\"\xC3\xA4\":\"umlaut\",\"\\u00f6\":\"escaped\"}"));
  EXPECT_EQ(Values("uid|email"), "|\xC3\xA9\xF0\x9F\x98\x80|\xC3\xA9\xF0\x9F\x98\x80|");
  EXPECT_EQ(Values("vkr_id|\xC3\xA4|\xC3\xB6"), "|a\"\\/\n|umlaut|escaped|");
}

TEST_F(UserInfoParseTest, NamesAndValuesEndAtAnEscapedNul) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid\u0000x":"1\u00002","email":"\u0000","vkr_id":"v","uid\u0000y":"3"})"));
  EXPECT_EQ(Values("uid|email"), "|3||");
}

class UserInfoQueryTest : public UserInfoParseTest {
 protected:
  UserInfoQueryTest() {
    query.Init("http://a/", nullptr);
    EXPECT_TRUE(query.ParseResponse(kUser));
    TakeEffects();
  }
};

TEST_F(UserInfoQueryTest, KeysAreNamesOfMembers) {
  EXPECT_EQ(UserInfoQuery::kUserIdKey, "uid");
  EXPECT_EQ(UserInfoQuery::kUserDisplayNameKey, "displayname");
  EXPECT_EQ(UserInfoQuery::kUserEmailKey, "email");
  EXPECT_EQ(UserInfoQuery::kUserVkrhIdKey, "vkr_id");
  EXPECT_EQ(UserInfoQuery().GetUserInfoValue("uid"), "");
}

TEST_F(UserInfoQueryTest, FailureKeepsTheCacheAndPostsNothing) {
  const Host host("UserInfoUpdated", [] {});
  for (const Outcome& failure :
       {NoReply(), Outcome{false, 200, R"({"uid":"2","email":"","vkr_id":""})", {}},
        Reply(201, R"({"uid":"2","email":"","vkr_id":""})"), Reply(304, ""), Reply(200, ""),
        Reply(200, "{"), Reply(200, R"({"uid":"2","email":"2"})")}) {
    ScriptTransfer(failure);
    EXPECT_FALSE(query.SynchronousRequest());
    query.AsynchronousRequest();
    EXPECT_TRUE(EndTransfer("http://a/", failure));
    EXPECT_EQ(Values("uid|displayname"), "|1|Ada|") << failure.status << failure.body;
  }
  EXPECT_EQ(host.count(), 0);
}

TEST_F(UserInfoQueryTest, EachSuccessPostsOnceWhenTheWholeCacheIsReplaced) {
  std::string seen;
  const Host host("UserInfoUpdated", [&] { seen = Values("uid|displayname"); });
  ScriptTransfer(Reply(200, kUser));
  EXPECT_TRUE(query.SynchronousRequest());
  EXPECT_EQ(host.count(), 1);
  EXPECT_EQ(seen, "|1|Ada|");
  query.AsynchronousRequest();
  EXPECT_TRUE(EndTransfer("http://a/", Reply(200, R"({"uid":"2","email":"","vkr_id":"w"})")));
  EXPECT_EQ(host.count(), 2);
  EXPECT_EQ(seen, "|2||");
  EXPECT_EQ(Values("vkr_id|email"), "|w||");
}

TEST_F(UserInfoQueryTest, ClearCacheEmptiesThenPostsEvenWhenEmpty) {
  std::string seen;
  const Host host("UserInfoUpdated", [&] { seen = Values("uid|displayname"); });
  query.ClearCache();
  EXPECT_EQ(seen, "|||");
  query.ClearCache();
  EXPECT_EQ(TakeText(), "post UserInfoUpdated | post UserInfoUpdated");
}

TEST_F(UserInfoQueryTest, SendCacheUpdateNotificationPostsAndChangesNothing) {
  query.SendCacheUpdateNotification();
  EXPECT_EQ(TakeText(), "post UserInfoUpdated");
  EXPECT_EQ(Values("uid|displayname"), "|1|Ada|");
}

}  // namespace
}  // namespace stowra_substitute
