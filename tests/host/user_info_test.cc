// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

class UserInfoTest : public InBothModes {};
IN_BOTH_MODES(UserInfoTest);

TEST_P(UserInfoTest, PrintsUserAsTable) {
  const EmulatorProcess emulator;
  EXPECT_THAT(RunInMode({"user-info", emulator.url() + "/user-info"}),
              Prints("user id  u-1001\n"
                     "name     Zoë Ångström\n"
                     "email    zoe@example.com\n"
                     "vkr id   vkr-7f3a01\n"));
}

TEST_P(UserInfoTest, PrintsUserAsJson) {
  const EmulatorProcess emulator;
  EXPECT_THAT(RunInMode({"user-info", emulator.url() + "/user-info", "--json"}),
              Prints(R"({"uid":"u-1001","displayname":"Zoë Ångström","email":"zoe@example.com",)"
                     R"("vkr_id":"vkr-7f3a01"})"
                     "\n"));
}

TEST_P(UserInfoTest, AcceptsMissingDisplayName) {
  const RawServer server(Replies(R"({"uid":"u","email":"e","vkr_id":""})"));
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--json"}),
              Prints("{\"uid\":\"u\",\"displayname\":\"\",\"email\":\"e\",\"vkr_id\":\"\"}\n"));
}

// A terminal would obey them.
TEST_P(UserInfoTest, EscapesControlCharactersFromTheServer) {
  const RawServer server(
      Replies(R"({"uid":"\u001b[2J","displayname":"a\nb","email":"\u009bx","vkr_id":"\u2028"})"));
  EXPECT_THAT(RunInMode({"user-info", server.Url()}), Prints("user id  \\u001B[2J\n"
                                                             "name     a\\u000Ab\n"
                                                             "email    \\u009Bx\n"
                                                             "vkr id   \\u2028\n"));
}

}  // namespace
}  // namespace stowra_test
