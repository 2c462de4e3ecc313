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

// Stands before an emulator and may change what it answers.
class Proxy {
 public:
  // Is given the target of each request, and the body of its reply to change.
  using Change = std::function<void(const std::string& target, std::string& body)>;

  explicit Proxy(Change change)
      : server_([this, change = std::move(change)](const RawRequest& request,
                                                   RawConnection& connection) {
          InternetData transport((emulator_.url() + request.target).c_str());
          // The addresses in the reply lead here again.
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

// Changes the first occurrence, and returns whether there is one.
bool Replace(const std::string& from, const std::string& to, std::string& text) {
  const std::size_t at = text.find(from);
  if (at == std::string::npos) return false;
  text.replace(at, from.size(), to);
  return true;
}

Outcome RunDemo(const std::string& url) { return RunStowra({"demo", url}); }

TEST(DemoTest, GoesAllTheWayAndTidiesUp) {
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
  EXPECT_THAT(outcome.out, EndsWith("\nthe same bytes came back\n\ndemo: all is well\n"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(DemoTest, SignalLeavesNothingBehind) {
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

// As the shell starts a program in the background.
TEST(DemoTest, SignalThatIsIgnoredStaysSo) {
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

TEST(DemoTest, MayBeRunAgain) {
  const EmulatorProcess emulator;
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
  EXPECT_EQ(RunDemo(emulator.url()).status, 0);
}

TEST(DemoTest, WorksBehindAProxyThatChangesNothing) {
  const Proxy proxy([](const std::string&, std::string&) {});
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST(DemoTest, NoticesBytesThatCameBackOtherwise) {
  for (const char* uploaded : {"/download?mid=m-1101", "/download?mid=m-1102"}) {
    const Proxy proxy([uploaded](const std::string& target, std::string& body) {
      if (Holds(target, uploaded))
        body[body.size() / 2] = static_cast<char>(~body[body.size() / 2]);
    });
    const Outcome outcome = RunDemo(proxy.Url());
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.err, "stowra: demo: what came back is not what was sent\n");
  }
}

TEST(DemoTest, NoticesAPageThatDoesNotLeadBack) {
  const Proxy proxy([](const std::string&, std::string& body) {
    Replace("rel=\"previous\"", "rel=\"other\"", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(outcome.err, "stowra: demo: a page after the first one does not lead back\n");
}

TEST(DemoTest, NoticesAPageThatIsAnotherOnTheWayBack) {
  std::atomic<int> times_asked = 0;
  const Proxy proxy([&times_asked](const std::string& target, std::string& body) {
    if (!Holds(target, "start=13")) return;
    if (++times_asked == 2) Replace("2024:", "2025:", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5) << times_asked;
  EXPECT_EQ(outcome.err, "stowra: demo: a page is not the same on the way back\n");
}

TEST(DemoTest, NoticesPagesWithoutEnd) {
  const Proxy proxy([](const std::string& target, std::string& body) {
    if (target == "/search") Replace("start=13", "start=1", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(outcome.err, "stowra: demo: the pages hold more results than there are\n");
}

TEST(DemoTest, NoticesThatAnUploadIsNotFound) {
  const Proxy proxy([](const std::string& target, std::string& body) {
    if (Holds(target, "/search?q=z")) Replace("#model", "#other", body);
  });
  const Outcome outcome = RunDemo(proxy.Url());
  EXPECT_EQ(outcome.status, 5);
  EXPECT_THAT(outcome.err, HasSubstr("stowra: demo: no model was found: " + proxy.Url()));
}

TEST(DemoTest, CommandThatFailsEndsIt) {
  const RawServer server(Always(Response(503, "")));
  const Outcome outcome = RunDemo(server.Url(""));
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url("/search?q=chair") + ": HTTP status 503\n");
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
}  // namespace stowra_test
