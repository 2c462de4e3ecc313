// SPDX-License-Identifier: MIT
// The options that show transfers, and the command that draws a trace.

#include <sstream>

#include "tests/host/host_test.h"
#include "tests/support/closed_port.h"

namespace stowra_test {
namespace {

// Redirects from /from and answers all else.
RawServer::Handler Redirects() {
  return [](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target.rfind("/from", 0) == 0
                         ? Response(302, "", "Location: /to?code=SECRET\r\n")
                         : Response(200, kUser, "X-Reply: a\x1B[31m\r\n"));
  };
}

class TraceTest : public FolderTest {
 protected:
  // Writes a trace of one transfer with a redirect.
  void Record(const std::vector<std::string>& more = {}) const {
    EXPECT_EQ(RunStowra(Joined({"user-info", secret_url_, "--trace", trace_}, more)).status, 0);
  }

  const RawServer server_{Redirects()};
  const std::string secret_url_ = server_.Url("/from?token=SECRET");
  const std::string trace_ = Path("trace");
};

TEST_F(TraceTest, VerbosePrintsHeadsAndEnd) {
  const Outcome outcome =
      RunStowra({"user-info", secret_url_, "--verbose", "--header", "X-Mine: SECRET"});
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
                           host + "/to\\?code=\\*\\*\\*: HTTP status 200, bytes sent 0, received " +
                           std::to_string(sizeof(kUser) - 1) +
                           "\n"
                           "notification UserInfoUpdated\n"));
}

TEST_F(TraceTest, VerbosePrintsWhyATransferFailed) {
  EXPECT_THAT(RunStowra({"search", "http://h:99999999", "-v"}).err,
              MatchesRegex("\\* transfer 1, [0-9.]+ ms: GET http://h:99999999: [^\n]*\n"
                           "stowra: [^\n]*\n"));
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

TEST_F(TraceTest, SecretsAreShownOnRequest) {
  EXPECT_THAT(RunStowra({"user-info", secret_url_, "-v", "--show-secrets"}).err,
              StartsWith("> GET /from?token=SECRET HTTP/1.1\n"));
}

TEST_F(TraceTest, FileHasALineForEachStep) {
  Record();
  const std::string trace = ReadFile(trace_);
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
  EXPECT_THAT(ReadFile(trace_),
              AllOf(HasSubstr(R"("event":"queued")"),
                    ContainsRegex(R"("event":"posted".*"notification":"UserInfoQueryRequest)")));
}

TEST_F(TraceTest, FileOfAFailureNamesTheReason) {
  EXPECT_EQ(RunStowra({"search", ClosedPort().Url(), "--trace", trace_}).status, 3);
  EXPECT_THAT(ReadFile(trace_), ContainsRegex(R"("event":"ended".*"reason":"not-connected")"));
}

TEST_F(TraceTest, UnwritableFileEndsTheCommandBeforeItsTransfers) {
  EXPECT_THAT(RunStowra({"user-info", server_.Url(), "--trace", Path("missing/trace")}),
              Fails(1, EndsWith("missing/trace: No such file or directory\n")));
  EXPECT_TRUE(server_.requests().empty());
}

TEST_F(TraceTest, FullDiskEndsTheTraceButNotTheCommand) {
  EXPECT_THAT(RunStowra({"user-info", server_.Url(), "--trace", "/dev/full"}),
              Ends(0, HasSubstr("user id  u\n"),
                   Message("warning: /dev/full", "No space left on device (the trace ends here)")));
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
  const ClosedPort closed;
  const std::string url = closed.Url();
  EXPECT_THAT(RunStowra({"search", url, "--timing"}),
              Fails(3, AllOf(StartsWith("stowra: " + url + ": "),
                             HasSubstr("\n  1  GET " + url.substr(7) + "  not-connected "))));
}

TEST_F(TraceTest, CommandDrawsTheFileAsTimingDid) {
  const std::string timing =
      RunStowra({"user-info", server_.Url("/from"), "--timing", "--trace", trace_}).err;
  EXPECT_THAT(RunStowra({"trace", trace_}), Prints(timing));
  EXPECT_THAT(RunStowra({"trace", "-"}, ReadFile(trace_)), Prints(timing));
}

TEST_F(TraceTest, TerminalGetsColours) {
  Record();
  EXPECT_THAT(ShowOnTerminal({"trace", trace_}).out, HasSubstr("m\u2588\x1B[0m"));
  EXPECT_THAT(ShowOnTerminal({"trace", trace_}, {"TERM=xterm", "NO_COLOR=1"}).out,
              Not(HasSubstr("\x1B")));
}

TEST_F(TraceTest, CommandWritesAPicture) {
  Record();
  EXPECT_THAT(RunStowra({"trace", trace_, "--svg", Path("picture.svg")}), Prints(""));
  EXPECT_THAT(ReadFile(Path("picture.svg")), AllOf(StartsWith("<svg "), EndsWith("</svg>\n")));
}

TEST_F(TraceTest, MalformedFileIsReportedWithItsLine) {
  Record();
  std::ofstream(trace_, std::ios::app) << "{\"time\":1}\n";
  EXPECT_THAT(RunStowra({"trace", trace_}),
              Fails(1, Message(trace_, "line 12: 'transfer' is not there")));
  Make("trace", "\x1B[31m\n");
  EXPECT_THAT(RunStowra({"trace", trace_}),
              Fails(1, Message(trace_, "line 1: not a line of JSON")));
  EXPECT_EQ(RunStowra({"trace", Path("missing")}).status, 1);
  EXPECT_EQ(RunStowra({"trace"}).status, 2);
}

TEST_F(TraceTest, EmptyFileHasNoTransfers) {
  EXPECT_THAT(RunStowra({"trace", "-"}, ""), Prints("no transfers\n"));
}

}  // namespace
}  // namespace stowra_test
