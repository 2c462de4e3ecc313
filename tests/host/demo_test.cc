// SPDX-License-Identifier: MIT
#include <atomic>
#include <csignal>
#include <functional>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;

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

Outcome RunDemoBehind(Proxy::Change change) { return RunDemo(Proxy(std::move(change)).Url()); }

// The demo must notice the change and say so.
void ExpectFault(Proxy::Change change, const std::string& text) {
  EXPECT_THAT(RunDemoBehind(std::move(change)), Ends(5, _, Message("demo", text)));
}

class DemoFilesTest : public FolderTest {
 protected:
  const std::vector<std::string> environment_ = {"TMPDIR=" + Path("")};
};

TEST_F(DemoFilesTest, RunsAllStepsAndRemovesItsFiles) {
  const EmulatorProcess emulator;
  const Outcome outcome = RunProgram(kStowra, {{"demo", emulator.url() + "/"}, "", environment_});
  EXPECT_THAT(outcome,
              Prints(EndsWith(
                  "\nthe downloaded file equals the uploaded one\n\ndemo: all checks passed\n")));
  for (const char* command : {"search", "download", "upload-config", "upload"}) {
    EXPECT_THAT(outcome.out,
                HasSubstr("\n$ stowra " + std::string(command) + " '" + emulator.url() + "/"));
  }
  EXPECT_THAT(outcome.out, HasSubstr("/model?mid=m-1102\n"));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(DemoFilesTest, RemovesItsFilesWhenASignalEndsIt) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const RawServer server(Silence());
    Child child(kStowra, {{"demo", server.Url("")}, "", environment_});
    ASSERT_TRUE(server.WaitForRequests(1));
    EXPECT_THAT(Files(), Not(IsEmpty()));
    child.Signal(signal);
    EXPECT_EQ(child.Wait().status, -signal);
    EXPECT_THAT(Files(), IsEmpty()) << signal;
  }
}

// A shell starts its background programs like this.
TEST_F(DemoFilesTest, KeepsIgnoringIgnoredSignal) {
  const RawServer server(Silence());
  Start start = AfterCommand("trap '' INT", {"demo", server.Url("")});
  start.environment = environment_;
  Child child("/bin/sh", start);
  ASSERT_TRUE(server.WaitForRequests(1));
  child.Signal(SIGINT);
  child.Signal(SIGTERM);
  EXPECT_EQ(child.Wait().status, -SIGTERM);
  EXPECT_THAT(Files(), IsEmpty());
}

TEST(DemoTest, RunsTwiceAgainstOneEmulator) {
  const EmulatorProcess emulator;
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
}

TEST(DemoTest, SucceedsBehindProxyThatChangesNothing) {
  EXPECT_THAT(RunDemoBehind([](const std::string&, std::string&) {}), Prints(_));
}

TEST(DemoTest, NoticesChangedDownload) {
  for (const char* uploaded : {"/download?mid=m-1101", "/download?mid=m-1102"}) {
    const auto change = [uploaded](const std::string& target, std::string& body) {
      char& byte = body[body.size() / 2];
      if (Holds(target, uploaded)) byte = static_cast<char>(~byte);
    };
    ExpectFault(change, "the downloaded file differs from the uploaded one");
  }
}

TEST(DemoTest, NoticesMissingPreviousLink) {
  const auto change = [](const std::string&, std::string& body) {
    ReplaceFirst("rel=\"previous\"", "rel=\"other\"", body);
  };
  ExpectFault(change, "a page after the first has no link to the previous page");
}

TEST(DemoTest, NoticesPageThatDiffersOnTheWayBack) {
  std::atomic<int> times_asked = 0;
  const auto change = [&times_asked](const std::string& target, std::string& body) {
    if (!Holds(target, "start=13")) return;
    if (++times_asked == 2) ReplaceFirst("2024:", "2025:", body);
  };
  ExpectFault(change, "a page differs on the way back");
}

TEST(DemoTest, NoticesEndlessPages) {
  const auto change = [](const std::string& target, std::string& body) {
    if (target == "/search") ReplaceFirst("start=13", "start=1", body);
  };
  ExpectFault(change, "the pages hold more results than the feed announces");
}

TEST(DemoTest, NoticesUploadMissingFromSearch) {
  const Proxy proxy([](const std::string& target, std::string& body) {
    if (Holds(target, "/search?q=z")) ReplaceFirst("#model", "#other", body);
  });
  EXPECT_THAT(RunDemo(proxy.Url()), Ends(5, _,
                                         AllOf(StartsWith("stowra: demo: " + proxy.Url()),
                                               EndsWith(": found no model to download\n"))));
}

TEST(DemoTest, StopsAtTheFirstFailedCommand) {
  const RawServer server(Always(Response(503, "")));
  EXPECT_THAT(RunDemo(server.Url("")),
              Ends(4, _, Message(server.Url("/search?q=chair"), "HTTP status 503")));
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
}  // namespace stowra_test
