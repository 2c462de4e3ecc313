// SPDX-License-Identifier: MIT
// Downloads that break off, and those that go on with what is left.

#include <csignal>
#include <thread>

#include "tests/host/host_test.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

constexpr char kContent[] = "0123456789";
constexpr char kHeaders[] = "ETag: \"v1\"\r\nContent-Disposition: attachment; filename=a.qmf\r\n";
constexpr char kCut[] =
    "HTTP/1.1 200 Text\r\nContent-Length: 10\r\nETag: \"v1\"\r\n"
    "Content-Disposition: attachment; filename=a.qmf\r\n\r\n01234";

// Answers with the rest to a request for it, else with the whole.
void SendRestOrWhole(const RawRequest& request, RawConnection& connection) {
  connection.Write(
      request.Header("Range") == "bytes=5-" && request.Header("If-Range") == "\"v1\""
          ? Response(206, "56789", std::string(kHeaders) + "Content-Range: bytes 5-9/10\r\n")
          : Response(200, kContent, kHeaders));
}

class DownloadContinueTest : public FolderTest {
 protected:
  Outcome Run(const std::vector<std::string>& arguments) const {
    return RunProgram("/bin/sh", Download(arguments));
  }

  // Ends a download with a signal after its server has sent a part, and then nothing.
  Outcome Interrupt(const std::string& part, int signal) const {
    const RawServer stalling([&part](const RawRequest&, RawConnection& connection) {
      connection.Write(part);
      connection.Stall();
    });
    Child child("/bin/sh", Download({stalling.Url(), "-o", "x"}));
    EXPECT_TRUE(WaitForPart());
    child.Signal(signal);
    return child.Wait();
  }

  const RawServer server_{SendRestOrWhole};

 private:
  bool WaitForPart() const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!std::filesystem::exists(Path("x.part")) || ReadFile(Path("x.part")) != "01234") {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::yield();
    }
    return true;
  }
};

TEST_F(DownloadContinueTest, GoesOnWithWhatIsLeft) {
  {
    const RawServer cutting(AlwaysThenClose(kCut));
    EXPECT_THAT(
        Run({cutting.Url(), "-o", "x"}),
        Fails(3, EndsWith("\n5 bytes have arrived; --continue --output x goes on from there\n")));
    EXPECT_EQ(ReadFile(Path("x.part")), "01234");
  }
  EXPECT_THAT(Run({server_.Url(), "--continue", "-o", "x"}),
              Prints("file          x\nbytes         10\ncontinued at  5\n"));
  EXPECT_THAT(Files(), ElementsAre(Pair("x", kContent)));
}

TEST_F(DownloadContinueTest, GoesOnWithAFileThatTheServerNamed) {
  {
    const RawServer cutting(AlwaysThenClose(kCut));
    EXPECT_THAT(Run({cutting.Url()}).err, HasSubstr("--continue --output a.qmf goes on"));
  }
  EXPECT_THAT(Run({server_.Url(), "--continue", "-o", "a.qmf", "--json"}),
              Prints("{\"file\":\"a.qmf\",\"bytes\":10,\"continued_at\":5}\n"));
}

TEST_F(DownloadContinueTest, BeginsAnewWithoutAPart) {
  EXPECT_THAT(Run({server_.Url(), "--continue", "-o", "x"}), Prints("file   x\nbytes  10\n"));
  EXPECT_EQ(ReadFile(Path("x")), kContent);
}

TEST_F(DownloadContinueTest, InterruptLeavesWhatCanBeContinued) {
  EXPECT_THAT(Interrupt(kCut, SIGINT),
              Fails(-SIGINT,
                    "stowra: interrupted\n"
                    "5 bytes have arrived; --continue --output x goes on from there\n"));
  EXPECT_EQ(Run({server_.Url(), "--continue", "-o", "x"}).status, 0);
  EXPECT_THAT(Files(), ElementsAre(Pair("x", kContent)));
}

TEST_F(DownloadContinueTest, InterruptLeavesNothingUseless) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_THAT(Interrupt("HTTP/1.1 200 Text\r\nContent-Length: 10\r\n\r\n01234", signal),
                Fails(-signal, "stowra: interrupted\n"));
    EXPECT_THAT(Files(), IsEmpty());
  }
}

}  // namespace
}  // namespace stowra_test
