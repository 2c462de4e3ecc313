// SPDX-License-Identifier: MIT
// What UserInfoQuery accepts as an answer, and what it keeps of it.

#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UserInfoQuery;

class UserInfoParseTest : public testing::Test {
 protected:
  // The cached value, as UTF-8.
  std::string Value(const char* key) const { return query.GetUserInfoValue(key).utf8(); }

  UserInfoQuery query;
};

TEST_F(UserInfoParseTest, KeepsEveryMemberUnderItsOwnName) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":"1","displayname":"Ada","email":"a@b","vkr_id":"v","locale":"en"})"));
  EXPECT_EQ(Value("uid"), "1");
  EXPECT_EQ(Value("displayname"), "Ada");
  EXPECT_EQ(Value("email"), "a@b");
  EXPECT_EQ(Value("vkr_id"), "v");
  EXPECT_EQ(Value("locale"), "en");
  EXPECT_EQ(Value("absent"), "");
  EXPECT_EQ(Value("UID"), "");
  EXPECT_EQ(Value(""), "");
}

TEST_F(UserInfoParseTest, DisplayNameIsNotRequired) {
  EXPECT_TRUE(query.ParseResponse(R"({"uid":"1","email":"e","vkr_id":"v"})"));
  EXPECT_EQ(Value("displayname"), "");
  EXPECT_EQ(Value("uid"), "1");
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
           R"({"uid":"2","email":"2","vkr_id":"2"} x)",
           R"({"uid":"2","email":"2","vkr_id":"2",})",
           R"({'uid':'2','email':'2','vkr_id':'2'})",
           "{}",
           "[]",
           "",
           "  ",
           "null",
           "\"uid\"",
           "1",
       }) {
    EXPECT_FALSE(query.ParseResponse(body)) << body;
    EXPECT_EQ(Value("uid"), "1") << body;
    EXPECT_EQ(Value("email"), "e") << body;
    EXPECT_EQ(Value("vkr_id"), "v") << body;
    EXPECT_EQ(Value("x"), "y") << body;
  }
}

TEST_F(UserInfoParseTest, ReplacesTheWholeCache) {
  ASSERT_TRUE(query.ParseResponse(R"({"uid":"1","email":"e","vkr_id":"v","only_first":"x"})"));
  ASSERT_TRUE(query.ParseResponse(R"({"uid":"2","email":"f","vkr_id":"w","only_second":"y"})"));
  EXPECT_EQ(Value("uid"), "2");
  EXPECT_EQ(Value("email"), "f");
  EXPECT_EQ(Value("vkr_id"), "w");
  EXPECT_EQ(Value("only_first"), "");
  EXPECT_EQ(Value("only_second"), "y");
}

TEST_F(UserInfoParseTest, LastOfRepeatedNamesCounts) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":"1","uid":"2","email":"e","email":"","vkr_id":"v","x":"1","x":"2","x":"3"})"));
  EXPECT_EQ(Value("uid"), "2");
  EXPECT_EQ(Value("email"), "");
  EXPECT_EQ(Value("x"), "3");
}

TEST_F(UserInfoParseTest, EmptyValuesCountAsPresent) {
  EXPECT_TRUE(query.ParseResponse(R"({"uid":"","email":"","vkr_id":""})"));
  EXPECT_EQ(Value("uid"), "");
}

TEST_F(UserInfoParseTest, ValuesThatAreNoStringsCountAsEmpty) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid":17,"email":null,"vkr_id":{"a":"b"},"t":true,"d":1.5,"l":["x"]})"));
  for (const char* const key : {"uid", "email", "vkr_id", "t", "d", "l"}) {
    EXPECT_EQ(Value(key), "") << key;
  }
}

TEST_F(UserInfoParseTest, TextIsUnicodeInNamesAndValues) {
  EXPECT_TRUE(query.ParseResponse(
      "{\"uid\":\"\\u00e9\\ud83d\\ude00\",\"email\":\"\xC3\xA9\xF0\x9F\x98\x80\",\"vkr_id\":\"a"
      "\\\"\\\\\\/\\n\",\"\xC3\xA4\":\"umlaut\",\"\\u00f6\":\"escaped\"}"));
  EXPECT_EQ(Value("uid"), "\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(Value("email"), "\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(Value("vkr_id"), "a\"\\/\n");
  EXPECT_EQ(Value("\xC3\xA4"), "umlaut");
  EXPECT_EQ(Value("\xC3\xB6"), "escaped");
}

TEST_F(UserInfoParseTest, NamesAndValuesEndAtAnEscapedNul) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"uid\u0000x":"1\u00002","email":"\u0000","vkr_id":"v","uid\u0000y":"3"})"));
  EXPECT_EQ(Value("uid"), "3");
  EXPECT_EQ(Value("email"), "");
}

TEST_F(UserInfoParseTest, TheBodyEndsAtANul) {
  const std::string answer = R"({"uid":"1","email":"e","vkr_id":"v"})";
  const std::string body = answer + std::string("\0 rest", 6);
  EXPECT_TRUE(query.ParseResponse(ovrant_ustring(body.data(), body.size())));
  EXPECT_EQ(Value("uid"), "1");
}

TEST_F(UserInfoParseTest, WhiteSpaceAroundTheObjectIsAccepted) {
  EXPECT_TRUE(query.ParseResponse(" \t\r\n{ \"uid\" : \"1\" , \"email\":\"\",\"vkr_id\":\"\"}\n "));
  EXPECT_EQ(Value("uid"), "1");
}

}  // namespace
}  // namespace stowra_substitute
