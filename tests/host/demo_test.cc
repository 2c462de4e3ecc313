// SPDX-License-Identifier: MIT
#include <signal.h>

#include <atomic>
#include <filesystem>
#include <functional>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/host/host_test.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Forwards requests to an emulator and may change its replies.
class Proxy {
 public:
  // Gets the target of each request, and the body of its reply, which it may change.
  using Change = std::function<void(const std::string& target, std::string& body)>;

  explicit Proxy(Change change)
      : server_([this, change = std::move(change)](const RawRequest& request,
                                                   RawConnection& connection) {
          InternetData transport((emulator_.url() + request.target).c_str());
          // Makes the URLs in the reply lead to this proxy.
          transport.SetValueForHTTPSendHeaders("Host", request.Header("Host").c_str());
          if (request.method == "POST") Pass(request, transport);
          EXPECT_TRUE(request.method == "POST" || transport.Download());
          std::string body(reinterpret_cast<const char*>(transport.received_data()),
                           transport.received_data_length());
          change(request.target, body);
          connection.Write(Response(transport.status_code(), body));
        }) {}

  std::string Url() const { return server_.Url(""); }

 private:
  void Pass(const RawRequest& request, InternetData& transport) const {
    transport.SetValueForHTTPSendHeaders("Content-Type", request.Header("Content-Type").c_str());
    transport.set_send_data(reinterpret_cast<const unsigned char*>(request.body.data()),
                            request.body.size());
    EXPECT_TRUE(transport.SendAndRead((emulator_.url() + request.target).c_str(), nullptr, nullptr,
                                      nullptr, nullptr, false, false, true, "", "", nullptr));
  }

  const EmulatorProcess emulator_;
  const RawServer server_;
};

bool Holds(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

void ReplaceFirst(const std::string& from, const std::string& to, std::string& text) {
  const std::size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
}

Outcome RunDemo(const std::string& url) { return RunStowra({"demo", url}); }

TEST(DemoTest, RunsAllStepsAndRemovesItsFiles) {
  const TemporaryFolder folder;
  const EmulatorProcess emulator;
  Start start;
  start.arguments = {"demo", emulator.url() + "/"};
  start.environment = {"TMPDIR=" + folder.path().string()};
  const Outcome outcome = RunProgram(kStowra, start);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char* command : {"search", "download", "upload-config", "upload"}) {
    EXPECT_THAT(outcome.out,
                HasSubstr("\n$ stowra " + std::string(command) + " '" + emulator.url() + "/"));
  }
  EXPECT_THAT(outcome.out, HasSubstr("/model?mid=m-1102\n"));
  EXPECT_THAT(
      outcome.out,
      EndsWith("\nthe downloaded file equals the uploaded one\n\ndemo: all checks passed\n"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(DemoTest, RemovesItsFilesWhenASignalEndsIt) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const TemporaryFolder folder;
    const RawServer server(Silence());
    Start start;
    start.arguments = {"demo", server.Url("")};
    start.environment = {"TMPDIR=" + folder.path().string()};
    Child child(kStowra, start);
    ASSERT_TRUE(server.WaitForRequests(1));
    EXPECT_FALSE(std::filesystem::is_empty(folder.path()));
    child.Signal(signal);
    EXPECT_EQ(child.Wait().status, -signal);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << signal;
  }
}

// A shell starts its background programs like this.
TEST(DemoTest, KeepsIgnoringIgnoredSignal) {
  const TemporaryFolder folder;
  const RawServer server(Silence());
  Start start;
  start.arguments = {"-c", "trap '' INT; exec \"$0\" demo \"$1\"", kStowra, server.Url("")};
  start.environment = {"TMPDIR=" + folder.path().string()};
  Child child("/bin/sh", start);
  ASSERT_TRUE(server.WaitForRequests(1));
  child.Signal(SIGINT);
  child.Signal(SIGTERM);
  EXPECT_EQ(child.Wait().status, -SIGTERM);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(DemoTest, RunsTwiceAgainstOneEmulator) {
  const EmulatorProcess emulator;
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
}

TEST(DemoTest, SucceedsBehindProxyThatChangesNothing) {
  const Proxy proxy([](const std::string&, std::string&) {});
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST(DemoTest, NoticesChangedDownload) {
  for (const char* uploaded : {"/download?mid=m-1101", "/download?mid=m-1102"}) {
    const Proxy proxy([uploaded](const std::string& target, std::string& body) {
      if (Holds(target, uploaded))
        body[body.size() / 2] = static_cast<char>(~body[body.size() / 2]);
    });
    const Outcome outcome = RunDemo(proxy.Url());
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.err, "stowra: demo: the downloaded file differs from the uploaded one\n");
  }
}

TEST(DemoTest, NoticesMissingPreviousLink) {
  const Proxy proxy([](const std::string&, std::string& body) {
    ReplaceFirst("rel=\"previous\"", "rel=\"other\"", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(outcome.err, "stowra: demo: a page after the first has no link to the previous page\n");
}

TEST(DemoTest, NoticesPageThatDiffersOnTheWayBack) {
  std::atomic<int> times_asked = 0;
  const Proxy proxy([&times_asked](const std::string& target, std::string& body) {
    if (!Holds(target, "start=13")) return;
    if (++times_asked == 2) ReplaceFirst("2024:", "2025:", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5) << times_asked;
  EXPECT_EQ(outcome.err, "stowra: demo: a page differs on the way back\n");
}

TEST(DemoTest, NoticesEndlessPages) {
  const Proxy proxy([](const std::string& target, std::string& body) {
    if (target == "/search") ReplaceFirst("start=13", "start=1", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(outcome.err, "stowra: demo: the pages hold more results than the feed announces\n");
}

TEST(DemoTest, NoticesUploadMissingFromSearch) {
  const Proxy proxy([](const std::string& target, std::string& body) {
    if (Holds(target, "/search?q=z")) ReplaceFirst("#model", "#other", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_THAT(outcome.err, StartsWith("stowra: demo: " + proxy.Url()));
  EXPECT_THAT(outcome.err, EndsWith(": found no model to download\n"));
}

TEST(DemoTest, StopsAtTheFirstFailedCommand) {
  const RawServer server(Always(Response(503, "")));
  const Outcome outcome = RunDemo(server.Url(""));
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url("/search?q=chair") + ": HTTP status 503\n");
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
}  // namespace stowra_test
