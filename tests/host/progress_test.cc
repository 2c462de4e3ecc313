// SPDX-License-Identifier: MIT
#include "host/progress_bar.h"

#include <memory>

#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferEvent;
using stowra::ProgressBar;
using stowra::ProgressText;

TransferEvent Received(unsigned long bytes, unsigned long whole) {
  TransferEvent event;
  event.kind = TransferEvent::Kind::kProgress;
  event.bytes_received = bytes;
  event.bytes_expected = whole;
  return event;
}

TEST(ProgressTextTest, ShowsShareOfTheTotal) {
  EXPECT_EQ(ProgressText(Received(0, 500)), "[                    ]   0%  0 bytes of 500 bytes");
  EXPECT_EQ(ProgressText(Received(1234567, 2469134)),
            "[##########          ]  50%  1.2 MB of 2.5 MB");
  EXPECT_EQ(ProgressText(Received(999, 1000)), "[################### ]  99%  999 bytes of 1.0 KB");
  EXPECT_EQ(ProgressText(Received(4000000000, 4000000000)),
            "[####################] 100%  4.0 GB of 4.0 GB");
  EXPECT_EQ(ProgressText(Received(7, 5)), "[####################] 100%  7 bytes of 5 bytes");
}

TEST(ProgressTextTest, ShowsBytesWithoutKnownTotal) {
  EXPECT_EQ(ProgressText(Received(0, 0)), "0 bytes");
  EXPECT_EQ(ProgressText(Received(31415, 0)), "31.4 KB");
}

TEST(ProgressTextTest, ShowsSentBytesOfUpload) {
  TransferEvent event = Received(5, 10);
  event.bytes_sent = 1;
  event.bytes_to_send = 4;
  EXPECT_EQ(ProgressText(event), "[#####               ]  25%  1 bytes of 4 bytes");
}

TEST(ProgressTextTest, ShowsRateAndTimeLeft) {
  EXPECT_EQ(ProgressText(Received(1000000, 2000000), 250000),
            "[##########          ]  50%  1.0 MB of 2.0 MB  250.0 KB/s  0:04 left");
  EXPECT_THAT(ProgressText(Received(0, 3600000), 1000), HasSubstr("  1.0 KB/s  1:00:00 left"));
  EXPECT_THAT(ProgressText(Received(0, 754), 1), HasSubstr("  1 bytes/s  12:34 left"));
  EXPECT_THAT(ProgressText(Received(0, 100), 0.0001), HasSubstr("  99:00:00 left"));
  EXPECT_THAT(ProgressText(Received(5, 5), 2), EndsWith("  2 bytes/s"));
  EXPECT_EQ(ProgressText(Received(31415, 0), 1500), "31.4 KB  1.5 KB/s");
}

TEST(ProgressTextTest, FitsSeventyNineCharacters) {
  const unsigned long most = 999'900'000'000'000;
  EXPECT_LE(ProgressText(Received(most - 1, most), 0.0001).size(), 79U);
  EXPECT_LE(ProgressText(Received(1, most), 999.9e9).size(), 79U);
}

TransferEvent Of(TransferEvent::Kind kind) {
  TransferEvent event;
  event.kind = kind;
  return event;
}

class ProgressBarTest : public testing::Test {
 protected:
  ProgressBarTest() : stream_(std::tmpfile(), std::fclose) {
    bar_.emplace(stream_.get(), [this] { return now_; });
  }

  void Pass(int milliseconds) { now_ += std::chrono::milliseconds(milliseconds); }

  std::string Written() {
    std::string text(static_cast<std::size_t>(std::ftell(stream_.get())), '\0');
    std::rewind(stream_.get());
    EXPECT_EQ(std::fread(text.data(), 1, text.size(), stream_.get()), text.size());
    return text;
  }

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_;
  std::chrono::steady_clock::time_point now_;
  std::optional<ProgressBar> bar_;
};

TEST_F(ProgressBarTest, RedrawsAtMostTenTimesASecond) {
  bar_->Show(Received(1, 0));
  for (int i = 2; i <= 100; ++i) {
    Pass(11);
    bar_->Show(Received(static_cast<unsigned long>(i), 0));
  }
  const std::string written = Written();
  EXPECT_THAT(written, StartsWith("\r1 bytes\r11 bytes\r21 bytes"));
  EXPECT_EQ(std::count(written.begin(), written.end(), '\r'), 10);
}

TEST_F(ProgressBarTest, OverwritesLongerTextAndErasesTheLast) {
  bar_->Show(Received(12345, 0));
  Pass(100);
  bar_->Show(Received(7, 0));
  bar_->Show(Of(TransferEvent::Kind::kEnded));
  EXPECT_EQ(Written(), "\r12.3 KB\r7 bytes\r       \r");
}

// 1 KB a second, then 9 KB a second. The rate follows within ten seconds.
TEST_F(ProgressBarTest, ShowsRateOfTheLastSeconds) {
  unsigned long bytes = 0;
  const auto show_seconds = [&](int seconds, unsigned long rate) {
    for (int i = 0; i < seconds; ++i) {
      bar_->Show(Received(bytes, 1'000'000));
      Pass(1000);
      bytes += rate;
    }
  };
  show_seconds(1, 1000);
  EXPECT_THAT(Written(), Not(HasSubstr("/s")));
  show_seconds(20, 1000);
  EXPECT_THAT(Written(), HasSubstr("1.0 KB/s"));
  show_seconds(12, 9000);
  EXPECT_THAT(Written(), HasSubstr("9.0 KB/s"));
}

TEST_F(ProgressBarTest, MeasuresEachTransferAlone) {
  bar_->Show(Received(5000, 0));
  Pass(5000);
  bar_->Show(Of(TransferEvent::Kind::kEnded));
  bar_->Show(Received(1, 0));
  EXPECT_THAT(Written(), EndsWith("\r1 bytes"));
  Pass(1000);
  bar_->Show(Received(3001, 0));
  EXPECT_THAT(Written(), EndsWith("\r3.0 KB  3.0 KB/s"));
}

TEST_F(ProgressBarTest, ErasesItselfWhenDestroyed) {
  bar_->Show(Received(7, 0));
  bar_.reset();
  EXPECT_EQ(Written(), "\r7 bytes\r       \r");
}

TEST_F(ProgressBarTest, WritesNothingWithoutProgress) {
  bar_->Show(Of(TransferEvent::Kind::kStarted));
  bar_->Show(Of(TransferEvent::Kind::kEnded));
  bar_.reset();
  EXPECT_EQ(Written(), "");
}

// Sends half of the body at once, and the rest slowly enough for the bar to move.
RawServer::Handler HalfAtOnce() {
  return [](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 Text\r\nContent-Length: 4\r\n\r\nab");
    connection.Drip("cd", std::chrono::milliseconds(150));
  };
}

class ProgressOnTerminalTest : public FolderTest {
 protected:
  static Outcome Show(const std::vector<std::string>& arguments,
                      const std::string& terminal = "xterm") {
    return ShowOnTerminal(arguments, {"TERM=" + terminal, "NO_COLOR=1"});
  }

  const RawServer server_{HalfAtOnce()};
  const std::vector<std::string> download_ = {"download", server_.Url(), "-o", Path("x")};
};

TEST_F(ProgressOnTerminalTest, ShowsBarForDownload) {
  // The number of further bars depends on timing.
  EXPECT_THAT(Show(download_), Prints(MatchesRegex("\r\\[#{10} {10}\\]  50%  2 bytes of 4 bytes"
                                                   "(\r\\[#+ *\\] +[0-9]+%  [34] bytes of 4 bytes)*"
                                                   "\r {47}\rfile   [^\r]*/x\r\nbytes  4\r\n")));
}

TEST_F(ProgressOnTerminalTest, ErasesBarBeforeMessage) {
  const RawServer server(AlwaysThenClose("HTTP/1.1 200 Text\r\nContent-Length: 4\r\n\r\nab"));
  EXPECT_THAT(
      Show({"download", server.Url(), "-o", Path("x")}),
      Ends(3,
           HasSubstr("2 bytes of 4 bytes\r" + std::string(47, ' ') + "\rstowra: " + server.Url()),
           ""));
}

TEST_F(ProgressOnTerminalTest, ShowsBarForUpload) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(
        Response(200, Config({{"http://" + request.Header("Host") + "/?name=a&type=b", false}})));
  });
  const std::string file = Make("a.qmf", std::string(3000000, 'x'));
  EXPECT_THAT(Show({"upload", server.Url(), file, "--subject-id", "m"}),
              Prints(AllOf(ContainsRegex("^\r\\[[# ]{20}\\] +[0-9]+%  [0-9.]+ [a-zA-Z]+ of 3.0 MB"),
                           ContainsRegex("\r +\rfile "))));
}

TEST_F(ProgressOnTerminalTest, ShowsNoBarOnDumbTerminal) {
  EXPECT_THAT(Show(download_, "dumb"), Prints("file   " + Path("x") + "\r\nbytes  4\r\n"));
}

TEST_F(ProgressOnTerminalTest, ShowsNoBarForSearch) {
  const RawServer server(Always(Response(200, Feed({}))));
  EXPECT_THAT(Show({"search", server.Url()}).out, Not(HasSubstr("%")));
}

}  // namespace
}  // namespace stowra_test
