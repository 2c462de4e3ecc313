// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using testing::HasSubstr;

class UserInfoTest : public InBothModes {};
IN_BOTH_MODES(UserInfoTest);

TEST_P(UserInfoTest, PrintsUserAsTable) {
  const EmulatorProcess emulator;
  const Outcome outcome = RunInMode({"user-info", emulator.url() + "/user-info"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "user id  u-1001\n"
            "name     Zoë Ångström\n"
            "email    zoe@example.com\n"
            "vkr id   vkr-7f3a01\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_P(UserInfoTest, PrintsUserAsJson) {
  const EmulatorProcess emulator;
  const Outcome outcome = RunInMode({"user-info", emulator.url() + "/user-info", "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "{\"uid\":\"u-1001\",\"displayname\":\"Zoë Ångström\",\"email\":\"zoe@example.com\","
            "\"vkr_id\":\"vkr-7f3a01\"}\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_P(UserInfoTest, AcceptsMissingDisplayName) {
  const RawServer server(Replies(R"({"uid":"u","email":"e","vkr_id":""})"));
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "{\"uid\":\"u\",\"displayname\":\"\",\"email\":\"e\",\"vkr_id\":\"\"}\n");
}

TEST_P(UserInfoTest, PrintsNotificationOnRequest) {
  const EmulatorProcess emulator;
  const Outcome outcome =
      RunInMode({"user-info", emulator.url() + "/user-info", "--notifications"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "notification UserInfoUpdated\n");
}

TEST_P(UserInfoTest, ReportsFailureThatIsNotPosted) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/user-info?fault=status:503";
  const Outcome outcome = RunInMode({"user-info", url, "--notifications"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "stowra: " + url + ": HTTP status 503: this status is a fault on purpose\n");
}

TEST_P(UserInfoTest, ReportsWhatIsWrongWithTheResponse) {
  const struct {
    const char* body;
    const char* fault;
  } cases[] = {
      {"", "it is empty"},
      {"{\"uid\":", "it cannot be read as JSON"},
      {"[]", "it lacks uid, email, vkr_id"},
      {R"({"uid":"u","email":"e"})", "it lacks vkr_id"},
      {R"({"email":"e","vkr_id":"v"})", "it lacks uid"},
  };
  for (const auto& [body, fault] : cases) {
    const RawServer server(Replies(body));
    const Outcome outcome = RunInMode({"user-info", server.Url(), "--notifications"});
    EXPECT_EQ(outcome.status, 5) << body;
    EXPECT_EQ(outcome.out, "") << body;
    EXPECT_EQ(outcome.err,
              "stowra: " + server.Url() + ": the response is not usable: " + fault + "\n");
  }
}

// A terminal would obey them.
TEST_P(UserInfoTest, EscapesControlCharactersFromTheServer) {
  const RawServer server(
      Replies(R"({"uid":"\u001b[2J","displayname":"a\nb","email":"\u009bx","vkr_id":"\u2028"})"));
  const Outcome outcome = RunInMode({"user-info", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "user id  \\u001B[2J\n"
            "name     a\\u000Ab\n"
            "email    \\u009Bx\n"
            "vkr id   \\u2028\n");
}

}  // namespace
}  // namespace stowra_test
