// SPDX-License-Identifier: MIT
// Each fault of the emulator, with each command that reads a document.

#include <tuple>

#include "tests/host/host_test.h"
#include "tests/support/closed_port.h"

namespace stowra_test {
namespace {

struct FaultCase {
  const char* fault;
  int status;
  const char* reason;  // a pattern for MatchesRegex
};

constexpr FaultCase kFaults[] = {
    {"status:503", 4, "HTTP status 503: this status is a fault on purpose"},
    {"status:204", 4, "HTTP status 204"},
    {"stall:60", 3, "no data for 0\\.3 seconds"},
    {"truncate", 3, "[^\n]*closed[^\n]*"},
    {"reset", 3, "[^\n]*reset[^\n]*"},
    {"drip:1", 0, ""},
    {"bomb", 3, "the response's body is too large"},
    {"garbage", 5,
     "the response is not usable: it (cannot be read as JSON|contains no extension's status|is not "
     "an Atom feed[^\n]*|is not a complete upload configuration)"},
    {"redirect-loop", 3, "[^\n]*redirects[^\n]*"},
};

const std::vector<std::string> kCommands[] = {
    {"user-info", "/user-info?"},
    {"user-info", "/user-info?", "--async"},
    {"update", "/update?"},
    {"update", "/update?", "--async"},
    {"extensions", "/extensions?", "--body", "-"},
    {"extensions", "/extensions?", "--body", "-", "--async"},
    {"search", "/search?q=nothing&"},
    {"upload-config", "/upload-config?"},
};

class FaultTest : public testing::TestWithParam<std::tuple<FaultCase, std::vector<std::string>>> {};

std::string Name(const testing::TestParamInfo<FaultTest::ParamType>& info) {
  const auto& [fault, command] = info.param;
  std::string name = command[0] + "_" + fault.fault + (command.back() == "--async" ? "_async" : "");
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

TEST_P(FaultTest, ReportsFaultInOneLineAndStatus) {
  const auto& [fault, command] = GetParam();
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + command[1] + "fault=" + fault.fault;
  std::vector<std::string> arguments = command;
  arguments[1] = url;
  if (fault.fault == std::string("stall:60")) arguments = Joined(arguments, {"--timeout", "0.3"});
  const Outcome outcome =
      RunStowra(arguments, R"({"extensions":[{"id":"roof-tools","version":"1.0"}]})");
  if (fault.status == 0) {
    EXPECT_THAT(outcome, Prints(Not(IsEmpty())));
    return;
  }
  const std::string prefix = "stowra: " + url + ": ";
  ASSERT_THAT(outcome, Fails(fault.status, StartsWith(prefix)));
  EXPECT_THAT(outcome.err.substr(prefix.size()), MatchesRegex(std::string(fault.reason) + "\n"));
}

INSTANTIATE_TEST_SUITE_P(, FaultTest,
                         testing::Combine(testing::ValuesIn(kFaults), testing::ValuesIn(kCommands)),
                         Name);

class NoServerTest : public InBothModes {};
IN_BOTH_MODES(NoServerTest);

TEST_P(NoServerTest, ReportsRefusedConnectionInOneLine) {
  const ClosedPort closed;
  const std::string url = closed.Url("/user-info");
  EXPECT_THAT(RunInMode({"user-info", url}),
              Fails(3, MatchesRegex("stowra: " + url + ": [^\n]*connect[^\n]*\n")));
}

// The library refuses what the program lets pass.
TEST_P(NoServerTest, ReportsUrlThatCannotBeReadAsWrongUsage) {
  EXPECT_THAT(RunInMode({"user-info", "http://h:99999999/"}),
              Fails(2, StartsWith("stowra: http://h:99999999/: ")));
}

}  // namespace
}  // namespace stowra_test
