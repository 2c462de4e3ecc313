// SPDX-License-Identifier: MIT
// The options that show transfers, and the command that draws a trace.

#include <fstream>
#include <sstream>

#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr char kUser[] = R"({"uid":"u","email":"e","vkr_id":"v"})";

// Redirects from /from and answers all else.
RawServer::Handler Redirects() {
  return [](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target.rfind("/from", 0) == 0
                         ? Response(302, "", "Location: /to?code=SECRET\r\n")
                         : Response(200, kUser, "X-Reply: a\x1B[31m\r\n"));
  };
}

std::string ContentOf(const std::string& file) {
  std::ifstream stream(file);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

class TraceTest : public testing::Test {
 protected:
  std::string File(const char* name) const { return (folder_.path() / name).string(); }

  // Writes a trace of one transfer with a redirect.
  void Record(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"user-info", server_.Url("/from?token=SECRET"), "--trace",
                                          File("trace")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_EQ(RunStowra(arguments).status, 0);
  }

  const TemporaryFolder folder_;
  const RawServer server_{Redirects()};
};

TEST_F(TraceTest, VerbosePrintsHeadsAndEnd) {
  const Outcome outcome = RunStowra(
      {"user-info", server_.Url("/from?token=SECRET"), "-v", "--header", "X-Mine: SECRET"});
  EXPECT_EQ(outcome.status, 0);
  const std::string host = "127.0.0.1:" + std::to_string(server_.port());
  EXPECT_THAT(outcome.err,
              MatchesRegex("> GET /from\\?token=\\*\\*\\* HTTP/1.1\n> Host: " + host +
                           "\n> Accept: \\*/\\*\n> X-Mine: \\*\\*\\*\n> User-Agent: [^\n]*\n"
                           "> Accept-Encoding: gzip\n"
                           "< HTTP/1.1 302 Text\n< Content-Length: 0\n"
                           "< Location: /to\\?code=\\*\\*\\*\n"
                           "> GET /to\\?code=\\*\\*\\* HTTP/1.1\n(> [^\n]*\n)*"
                           "< HTTP/1.1 200 Text\n< Content-Length: [0-9]*\n< X-Reply: a[^\x1B\n]*\n"
                           "\\* transfer 1, [0-9.]+ ms: GET http://" +
                           host +
                           "/to\\?code=\\*\\*\\*: HTTP status 200, bytes sent 0, received [0-9]+\n"
                           "notification UserInfoUpdated\n"));
}

TEST_F(TraceTest, VeryVerbosePrintsStepsToo) {
  const Outcome outcome = RunStowra({"user-info", server_.Url("/from"), "-vv", "--async"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* step : {"queued", "started, GET http", "connected to 127.0.0.1 port [0-9]+",
                           "the response begins", "HTTP status 302, redirected to http://[^\n]*/to",
                           "still connected to 127.0.0.1", "GET http[^\n]*: HTTP status 200, bytes",
                           "posted UserInfoQueryRequestReturned on thread [1-9]"}) {
    EXPECT_THAT(outcome.err, ContainsRegex(std::string("\\* transfer 1, [0-9.]+ ms: ") + step))
        << outcome.err;
  }
}

TEST_F(TraceTest, NothingIsPrintedUnasked) {
  const Outcome outcome = RunStowra({"user-info", server_.Url("/from")});
  EXPECT_EQ(outcome.err, "");
}

TEST_F(TraceTest, SecretsAreShownOnRequest) {
  const Outcome outcome =
      RunStowra({"user-info", server_.Url("/from?token=SECRET"), "-v", "--show-secrets"});
  EXPECT_THAT(outcome.err, StartsWith("> GET /from?token=SECRET HTTP/1.1\n"));
}

TEST_F(TraceTest, FileHasALineForEachStep) {
  Record();
  const std::string trace = ContentOf(File("trace"));
  std::string events;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    const std::string key = R"("event":")";
    const std::size_t at = line.find(key) + key.size();
    events += line.substr(at, line.find('"', at) - at) + " ";
  }
  EXPECT_EQ(events,
            "started connected request first-byte response redirected "
            "connected request first-byte response ended ");
  EXPECT_THAT(trace, AllOf(HasSubstr(R"("head":["GET /from?token=*** HTTP/1.1","Host: )"),
                           Not(HasSubstr("SECRET")), Not(HasSubstr("\x1B"))));
}

TEST_F(TraceTest, FileOfABackgroundTransferNamesThePost) {
  Record({"--async"});
  EXPECT_THAT(ContentOf(File("trace")),
              AllOf(HasSubstr(R"("event":"queued")"),
                    ContainsRegex(R"("event":"posted".*"notification":"UserInfoQueryRequest)")));
}

TEST_F(TraceTest, FileOfAFailureNamesTheReason) {
  const Outcome outcome = RunStowra({"search", "http://127.0.0.1:1/", "--trace", File("trace")});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(ContentOf(File("trace")),
              ContainsRegex(R"("event":"ended".*"reason":"not-connected")"));
}

TEST_F(TraceTest, UnwritableFileEndsTheCommandBeforeItsTransfers) {
  const Outcome outcome =
      RunStowra({"user-info", server_.Url(), "--trace", File("missing") + "/trace"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, EndsWith("missing/trace: No such file or directory\n"));
  EXPECT_TRUE(server_.requests().empty());
}

TEST_F(TraceTest, FullDiskEndsTheTraceButNotTheCommand) {
  const Outcome outcome = RunStowra({"user-info", server_.Url(), "--trace", "/dev/full"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            "stowra: warning: /dev/full: No space left on device (the trace ends here)\n");
}

TEST_F(TraceTest, TimingDrawsEachRequestAsPlainText) {
  const Outcome outcome = RunStowra({"user-info", server_.Url("/from"), "--timing"});
  EXPECT_EQ(outcome.status, 0);
  std::istringstream lines(outcome.err);
  std::string line;
  for (const char* request :
       {"  1  GET 127\\.0\\.0\\.1:.*302.* ms  \\|.*\\|",
        "  1  GET 127\\.0\\.0\\.1:.*200.* ms  \\|.*\\|", ".* in all", "\\. queued .*"}) {
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_THAT(line, MatchesRegex(request));
    EXPECT_LE(line.size(), 80U);
  }
  EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(TraceTest, TimingIsDrawnAfterAFailureToo) {
  const Outcome outcome = RunStowra({"search", "http://127.0.0.1:1/", "--timing"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("stowra: http://127.0.0.1:1/: "),
                                 HasSubstr("\n  1  GET 127.0.0.1:1/  not-connected ")));
}

TEST_F(TraceTest, CommandDrawsTheFileAsTimingDid) {
  const Outcome timing =
      RunStowra({"user-info", server_.Url("/from"), "--timing", "--trace", File("trace")});
  const Outcome drawn = RunStowra({"trace", File("trace")});
  EXPECT_EQ(drawn.status, 0);
  EXPECT_EQ(drawn.err, "");
  EXPECT_EQ(drawn.out, timing.err);
  EXPECT_EQ(RunStowra({"trace", "-"}, ContentOf(File("trace"))).out, timing.err);
}

TEST_F(TraceTest, TerminalGetsColours) {
  Record();
  Start start;
  start.arguments = {"trace", File("trace")};
  start.environment = {"TERM=xterm"};
  EXPECT_THAT(RunOnTerminal(kStowra, start).out, HasSubstr("m\u2588\x1B[0m"));
  start.environment.emplace_back("NO_COLOR=1");
  EXPECT_THAT(RunOnTerminal(kStowra, start).out, Not(HasSubstr("\x1B")));
}

TEST_F(TraceTest, CommandWritesAPicture) {
  Record();
  const Outcome outcome = RunStowra({"trace", File("trace"), "--svg", File("picture.svg")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out + outcome.err, "");
  EXPECT_THAT(ContentOf(File("picture.svg")), AllOf(StartsWith("<svg "), EndsWith("</svg>\n")));
}

TEST_F(TraceTest, MalformedFileIsReportedWithItsLine) {
  Record();
  std::ofstream(File("trace"), std::ios::app) << "{\"time\":1}\n";
  Outcome outcome = RunStowra({"trace", File("trace")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "stowra: " + File("trace") + ": line 12: 'transfer' is not there\n");
  std::ofstream(File("trace")) << "\x1B[31m\n";
  outcome = RunStowra({"trace", File("trace")});
  EXPECT_EQ(outcome.err, "stowra: " + File("trace") + ": line 1: not a line of JSON\n");
  EXPECT_EQ(RunStowra({"trace", File("missing")}).status, 1);
  EXPECT_EQ(RunStowra({"trace"}).status, 2);
}

TEST_F(TraceTest, EmptyFileHasNoTransfers) {
  EXPECT_EQ(RunStowra({"trace", "-"}, "").out, "no transfers\n");
}

}  // namespace
}  // namespace stowra_test
