// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

constexpr char kEscape[] = "\x1B[";

class ColourTest : public testing::Test {
 protected:
  const RawServer server_{Replies(kUser)};
  const std::vector<std::string> good_ = {"user-info", server_.Url()};
  const std::vector<std::string> bad_ = {"user-info", "x"};
};

TEST_F(ColourTest, ColoursOutputOnTerminal) {
  EXPECT_THAT(ShowOnTerminal(good_), Prints(HasSubstr("\x1B[1muser id\x1B[0m  u\r\n")));
  EXPECT_THAT(ShowOnTerminal(bad_),
              Ends(2, HasSubstr("\x1B[31mstowra:\x1B[0m URL: 'x' is not an http"), ""));
}

TEST_F(ColourTest, WritesJsonWithoutColour) {
  EXPECT_THAT(ShowOnTerminal(Joined(good_, {"--json"})),
              Prints(AllOf(StartsWith("{\"uid\":\"u\""), Not(HasSubstr(kEscape)))));
}

TEST_F(ColourTest, ObeysNoColorAndDumbTerminal) {
  for (const std::vector<std::string>& environment :
       {std::vector<std::string>{"TERM=xterm", "NO_COLOR=1"}, {"TERM=dumb"}}) {
    EXPECT_THAT(ShowOnTerminal(good_, environment),
                Prints(AllOf(HasSubstr("user id  u\r\n"), Not(HasSubstr(kEscape)))));
    EXPECT_THAT(ShowOnTerminal(bad_, environment).out,
                AllOf(HasSubstr("stowra: URL: 'x' is not an http"), Not(HasSubstr(kEscape))));
  }
}

TEST_F(ColourTest, IgnoresEmptyNoColor) {
  EXPECT_THAT(ShowOnTerminal(bad_, {"TERM=xterm", "NO_COLOR="}).out, HasSubstr(kEscape));
}

TEST_F(ColourTest, WritesFilesWithoutColour) {
  EXPECT_THAT(RunProgram(kStowra, {good_, "", {"TERM=xterm"}}), Prints(Not(HasSubstr(kEscape))));
  EXPECT_THAT(
      RunProgram(kStowra, {bad_, "", {"TERM=xterm"}}),
      Fails(2, Message("URL", "'x' is not an http or https URL (see stowra user-info --help)")));
}

}  // namespace
}  // namespace stowra_test
