// SPDX-License-Identifier: MIT
// Downloads that break off, and those that go on with what is left.

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/host/host_test.h"
#include "tests/support/corpora.h"
#include "tests/support/event.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr char kContent[] = "0123456789";
constexpr char kHeaders[] = "ETag: \"v1\"\r\nContent-Disposition: attachment; filename=a.qmf\r\n";
constexpr char kCut[] =
    "HTTP/1.1 200 Text\r\nContent-Length: 10\r\nETag: \"v1\"\r\n"
    "Content-Disposition: attachment; filename=a.qmf\r\n\r\n01234";

// Answers with the rest to a request for it, else with the whole.
RawServer::Handler Whole() {
  return [](const RawRequest& request, RawConnection& connection) {
    connection.Write(
        request.Header("Range") == "bytes=5-" && request.Header("If-Range") == "\"v1\""
            ? Response(206, "56789", std::string(kHeaders) + "Content-Range: bytes 5-9/10\r\n")
            : Response(200, kContent, kHeaders));
  };
}

class DownloadContinueTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (folder_.path() / name).string(); }
  Start Prepare(const std::vector<std::string>& arguments) const {
    Start start;
    start.arguments = {"-c", "cd \"$0\" && exec \"$@\"", folder_.path().string(), kStowra,
                       "download"};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    return start;
  }
  Outcome Run(const std::vector<std::string>& arguments) const {
    return RunProgram("/bin/sh", Prepare(arguments));
  }
  std::size_t CountFiles() const {
    const std::filesystem::directory_iterator entries(folder_.path());
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
  }

  const TemporaryFolder folder_;
};

TEST_F(DownloadContinueTest, GoesOnWithWhatIsLeft) {
  {
    const RawServer cutting(AlwaysThenClose(kCut));
    const Outcome outcome = Run({cutting.Url(), "-o", "x"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err,
                EndsWith("\n5 bytes have arrived; --continue --output x goes on from there\n"));
    EXPECT_EQ(ReadFile(Path("x.part")), "01234");
  }
  const RawServer server(Whole());
  const Outcome outcome = Run({server.Url(), "--continue", "-o", "x"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "file          x\nbytes         10\ncontinued at  5\n");
  EXPECT_EQ(ReadFile(Path("x")), kContent);
  EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(DownloadContinueTest, GoesOnWithAFileThatTheServerNamed) {
  {
    const RawServer cutting(AlwaysThenClose(kCut));
    EXPECT_THAT(Run({cutting.Url()}).err, HasSubstr("--continue --output a.qmf goes on"));
  }
  const RawServer server(Whole());
  EXPECT_EQ(Run({server.Url(), "--continue", "-o", "a.qmf", "--json"}).out,
            "{\"file\":\"a.qmf\",\"bytes\":10,\"continued_at\":5}\n");
}

TEST_F(DownloadContinueTest, BeginsAnewWithoutAPart) {
  const RawServer server(Whole());
  EXPECT_EQ(Run({server.Url(), "--continue", "-o", "x"}).out, "file   x\nbytes  10\n");
  EXPECT_EQ(ReadFile(Path("x")), kContent);
}

TEST_F(DownloadContinueTest, NeedsTheNameOfTheFile) {
  const Outcome outcome = Run({"http://127.0.0.1:1/", "--continue"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("--continue requires --output"));
}

// Sends a part, and then nothing.
RawServer::Handler Stalling(const std::string& part) {
  return [part](const RawRequest&, RawConnection& connection) {
    connection.Write(part);
    connection.Stall();
  };
}

bool WaitForContent(const std::string& path, const std::string& content) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!std::filesystem::exists(path) || ReadFile(path) != content) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::yield();
  }
  return true;
}

TEST_F(DownloadContinueTest, InterruptLeavesWhatCanBeContinued) {
  {
    const RawServer stalling(Stalling(kCut));
    Child child("/bin/sh", Prepare({stalling.Url(), "-o", "x"}));
    ASSERT_TRUE(WaitForContent(Path("x.part"), "01234"));
    child.Signal(SIGINT);
    const Outcome outcome = child.Wait();
    EXPECT_EQ(outcome.status, -SIGINT);
    EXPECT_EQ(outcome.err,
              "stowra: interrupted\n"
              "5 bytes have arrived; --continue --output x goes on from there\n");
    EXPECT_EQ(outcome.out, "");
  }
  const RawServer server(Whole());
  EXPECT_EQ(Run({server.Url(), "--continue", "-o", "x"}).status, 0);
  EXPECT_EQ(ReadFile(Path("x")), kContent);
  EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(DownloadContinueTest, InterruptLeavesNothingUseless) {
  const RawServer stalling(Stalling("HTTP/1.1 200 Text\r\nContent-Length: 10\r\n\r\n01234"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Child child("/bin/sh", Prepare({stalling.Url(), "-o", "x"}));
    ASSERT_TRUE(WaitForContent(Path("x.part"), "01234"));
    child.Signal(signal);
    const Outcome outcome = child.Wait();
    EXPECT_EQ(outcome.status, -signal);
    EXPECT_EQ(outcome.err, "stowra: interrupted\n");
    EXPECT_EQ(CountFiles(), 0U);
  }
}

TEST_F(DownloadContinueTest, PrintsTheServersMessage) {
  const RawServer server(
      Always(Response(403, "not yours\nask again", "Content-Type: text/plain\r\n")));
  const Outcome outcome = Run({server.Url(), "-o", "x"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url() + ": HTTP status 403: not yours\n");
  EXPECT_EQ(CountFiles(), 0U);
}

}  // namespace
}  // namespace stowra_test
