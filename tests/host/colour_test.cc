// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kUser[] = R"({"uid":"u","email":"e","vkr_id":"v"})";
constexpr char kEscape[] = "\x1B[";

Outcome ShowOnTerminal(const std::vector<std::string>& arguments,
                       const std::vector<std::string>& environment) {
  Start start;
  start.arguments = arguments;
  start.environment = environment;
  return RunOnTerminal(kStowra, start);
}

TEST(ColourTest, ColoursOutputOnTerminal) {
  const RawServer server(Replies(kUser));
  const Outcome result = ShowOnTerminal({"user-info", server.Url()}, {"TERM=xterm"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("\x1B[1muser id\x1B[0m  u\r\n"));
  const Outcome message = ShowOnTerminal({"user-info", "x"}, {"TERM=xterm"});
  EXPECT_EQ(message.status, 2);
  EXPECT_THAT(message.out, HasSubstr("\x1B[31mstowra:\x1B[0m URL: 'x' is not an http"));
}

TEST(ColourTest, WritesJsonWithoutColour) {
  const RawServer server(Replies(kUser));
  const Outcome result = ShowOnTerminal({"user-info", server.Url(), "--json"}, {"TERM=xterm"});
  EXPECT_THAT(result.out, testing::StartsWith("{\"uid\":\"u\""));
  EXPECT_THAT(result.out, Not(HasSubstr(kEscape)));
}

TEST(ColourTest, ObeysNoColorAndDumbTerminal) {
  const RawServer server(Replies(kUser));
  for (const std::vector<std::string>& environment :
       {std::vector<std::string>{"TERM=xterm", "NO_COLOR=1"}, {"TERM=dumb"}}) {
    const Outcome result = ShowOnTerminal({"user-info", server.Url()}, environment);
    EXPECT_THAT(result.out, HasSubstr("user id  u\r\n"));
    EXPECT_THAT(result.out, Not(HasSubstr(kEscape)));
    const Outcome message = ShowOnTerminal({"user-info", "x"}, environment);
    EXPECT_THAT(message.out, HasSubstr("stowra: URL: 'x' is not an http"));
    EXPECT_THAT(message.out, Not(HasSubstr(kEscape)));
  }
}

TEST(ColourTest, IgnoresEmptyNoColor) {
  const Outcome message = ShowOnTerminal({"user-info", "x"}, {"TERM=xterm", "NO_COLOR="});
  EXPECT_THAT(message.out, HasSubstr(kEscape));
}

TEST(ColourTest, WritesFilesWithoutColour) {
  const RawServer server(Replies(kUser));
  Start start;
  start.arguments = {"user-info", server.Url()};
  start.environment = {"TERM=xterm"};
  EXPECT_THAT(RunProgram(kStowra, start).out, Not(HasSubstr(kEscape)));
  start.arguments = {"user-info", "x"};
  EXPECT_EQ(RunProgram(kStowra, start).err,
            "stowra: URL: 'x' is not an http or https URL (see stowra user-info --help)\n");
}

}  // namespace
}  // namespace stowra_test
