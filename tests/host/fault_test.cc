// SPDX-License-Identifier: MIT
// Each fault of the emulator, with each command that reads a document.

#include <tuple>

#include "tests/host/host_test.h"

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
     "an "
     "Atom feed[^\n]*|is not a complete upload configuration)"},
    {"redirect-loop", 3, "[^\n]*redirects[^\n]*"},
};

const std::vector<std::string> kCommands[] = {
    {"user-info", "/user-info"},
    {"update", "/update"},
    {"extensions", "/extensions", "--body", "-"},
};

// These have no --async.
const std::vector<std::string> kWaitingCommands[] = {
    {"search", "/search?q=nothing&"},
    {"upload-config", "/upload-config"},
};

class FaultTest
    : public testing::TestWithParam<std::tuple<FaultCase, std::vector<std::string>, const char*>> {
};

std::string Name(const testing::TestParamInfo<FaultTest::ParamType>& info) {
  const auto& [fault, command, mode] = info.param;
  std::string name = command[0] + "_" + fault.fault + (*mode == '\0' ? "" : "_async");
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

TEST_P(FaultTest, ReportsFaultInOneLineAndStatus) {
  const auto& [fault, command, mode] = GetParam();
  const EmulatorProcess emulator;
  std::vector<std::string> arguments = command;
  const bool has_query = arguments[1].back() == '&';
  arguments[1] = emulator.url() + arguments[1] + (has_query ? "" : "?") + "fault=" + fault.fault;
  const std::string url = arguments[1];
  if (*mode != '\0') arguments.emplace_back(mode);
  if (std::string(fault.fault) == "stall:60") {
    arguments.insert(arguments.end(), {"--timeout", "0.3"});
  }
  const Outcome outcome =
      RunStowra(arguments, R"({"extensions":[{"id":"roof-tools","version":"1.0"}]})");
  EXPECT_EQ(outcome.status, fault.status);
  if (fault.status == 0) {
    EXPECT_NE(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    return;
  }
  EXPECT_EQ(outcome.out, "");
  const std::string prefix = "stowra: " + url + ": ";
  ASSERT_THAT(outcome.err, testing::StartsWith(prefix));
  EXPECT_THAT(outcome.err.substr(prefix.size()),
              testing::MatchesRegex(std::string(fault.reason) + "\n"));
}

INSTANTIATE_TEST_SUITE_P(, FaultTest,
                         testing::Combine(testing::ValuesIn(kFaults), testing::ValuesIn(kCommands),
                                          testing::Values("", "--async")),
                         Name);
INSTANTIATE_TEST_SUITE_P(Waiting, FaultTest,
                         testing::Combine(testing::ValuesIn(kFaults),
                                          testing::ValuesIn(kWaitingCommands), testing::Values("")),
                         Name);

class NoServerTest : public InBothModes {};
IN_BOTH_MODES(NoServerTest);

TEST_P(NoServerTest, ReportsRefusedConnectionInOneLine) {
  std::string url;
  {
    const EmulatorProcess emulator;
    url = emulator.url() + "/user-info";
  }
  const Outcome outcome = RunInMode({"user-info", url});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, testing::MatchesRegex("stowra: " + url + ": [^\n]*connect[^\n]*\n"));
}

TEST_P(NoServerTest, ReportsUnsupportedUrlAsWrongUsage) {
  for (const std::string url :
       {"ftp://127.0.0.1/x", "file:///etc/passwd", "x", "http://", "-", "http://h/a b"}) {
    const Outcome outcome = RunInMode({"user-info", url});
    EXPECT_EQ(outcome.status, 2) << url;
    EXPECT_EQ(outcome.err, "stowra: URL: '" + url +
                               "' is not an http or https URL (see stowra user-info --help)\n");
  }
}

// The library refuses what the program lets pass.
TEST_P(NoServerTest, ReportsUrlThatCannotBeReadAsWrongUsage) {
  const Outcome outcome = RunInMode({"user-info", "http://h:99999999/"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, testing::StartsWith("stowra: http://h:99999999/: "));
}

TEST_P(NoServerTest, EscapesControlCharactersInUrl) {
  const Outcome outcome = RunInMode({"user-info", "x\ny\x1B[31m"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err,
            "stowra: URL: 'x\\u000Ay\\u001B[31m' is not an http or https URL (see stowra user-info "
            "--help)\n");
}

}  // namespace
}  // namespace stowra_test
