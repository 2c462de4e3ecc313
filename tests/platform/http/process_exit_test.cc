// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/http/exit_child.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/child_process.h"

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kTransfers = kExitChildTransfers;

// A child program, with pipes to its input and from its output.
class Child {
 public:
  Child(const char* program, const std::vector<std::string>& words)
      : process_({program,
                  words,
                  {},
                  {},
                  {{input_.read_end.number(), STDIN_FILENO},
                   {output_.write_end.number(), STDOUT_FILENO}}}) {
    output_.write_end.Close();
  }

  void SayGo() { EXPECT_TRUE(input_.write_end.WriteAll("go\n")); }

  void ExpectLine(const char* text) {
    std::string line;
    std::optional<char> byte;
    while ((byte = ReadByte()) && *byte != '\n') line += *byte;
    EXPECT_EQ(line, text);
  }

  // Expects the program to say that it leaves, and to exit in time with the right code.
  void ExpectToLeave() {
    ExpectLine(kExitChildLeaving);
    const auto begin = Clock::now();
    // The output ends with the program.
    EXPECT_EQ(ReadByte(), std::nullopt);
    ASSERT_TRUE(output_ended_) << "it still runs";
    EXPECT_EQ(process_.Wait(), kExitChildCode);
    EXPECT_LT(Clock::now() - begin, kPatience);
  }

 private:
  // Gives nothing at the end of the output, or when nothing comes within kPatience.
  std::optional<char> ReadByte() {
    const int output = output_.read_end.number();
    pollfd readable = {output, POLLIN, 0};
    const auto limit = std::chrono::milliseconds(kPatience).count();
    if (poll(&readable, 1, static_cast<int>(limit)) != 1) return std::nullopt;
    char byte = 0;
    if (read(output, &byte, 1) == 1) return byte;
    output_ended_ = true;
    return std::nullopt;
  }

  // Both ends of the input stay open here, so writing to an ended program raises no signal.
  OwnedPipe input_;
  OwnedPipe output_;
  bool output_ended_ = false;
  ChildProcess process_;
};

std::string NameOfWay(const testing::TestParamInfo<const char*>& test) {
  std::string name = test.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

// Waits for so many requests of a program in that mode. Then it must leave in time.
void ExpectQuickExit(const char* mode, const RawServer& server, std::size_t requests = kTransfers,
                     const std::string& authority = "") {
  std::vector<std::string> words = {mode, server.Url()};
  if (!authority.empty()) words.push_back(authority);
  Child child(STOWRA_EXIT_CHILD, words);
  ASSERT_TRUE(server.WaitForRequests(requests));
  child.SayGo();
  child.ExpectToLeave();
}

class ProcessExitTest : public ::testing::TestWithParam<const char*> {};

// The server does not answer.
TEST_P(ProcessExitTest, IsQuickWhileTransfersAreStalled) {
  ExpectQuickExit(GetParam(), RawServer(Silence()));
}

TEST_P(ProcessExitTest, IsQuickWhileTlsTransfersAreStalled) {
  const TemporaryFolder folder;
  const CertificateAuthority authority("trusted");
  authority.WriteTo(folder.path() / "authority.pem");
  const Certificate certificate = authority.Issue("IP:127.0.0.1");
  ExpectQuickExit(GetParam(), RawServer(Silence(), {&certificate}), kTransfers,
                  folder.path() / "authority.pem");
}

TEST_P(ProcessExitTest, IsQuickWhileBodiesArrive) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n\r\n");
    while (connection.Drip("x", std::chrono::milliseconds(1))) {
    }
  });
  ExpectQuickExit(GetParam(), server);
}

INSTANTIATE_TEST_SUITE_P(Ways, ProcessExitTest,
                         ::testing::Values("return", "return-and-destroy",
                                           "return-with-young-static", "exit",
                                           "exit-from-another-thread", "exit-inside-the-listener",
                                           "fork-and-exec", "fork-and-exit"),
                         NameOfWay);

TEST(ProcessEndTest, StaticDestructorsMayUseTheTransport) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target == "/late") {
      connection.Write(Response(200, "hello"));
    } else {
      connection.Stall();
    }
  });
  ExpectQuickExit("return-with-old-static", server);
  EXPECT_EQ(server.requests().back().target, "/late");
}

TEST(ProcessEndTest, IsQuickFromInsideANotification) {
  Event answer;
  const RawServer server(HelloAfter(answer));
  Child child(STOWRA_EXIT_CHILD, {"exit-inside-a-notification", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  answer.Set();
  child.ExpectToLeave();
}

struct Late {
  const char* name;
  const char* mode;
  bool answers;
};

class LateProcessEndTest : public ::testing::TestWithParam<Late> {};

// The program says when it may be told to leave.
TEST_P(LateProcessEndTest, IsQuick) {
  const RawServer server(GetParam().answers ? Always(Response(200, "hello")) : Silence());
  Child child(STOWRA_EXIT_CHILD, {GetParam().mode, server.Url()});
  child.ExpectLine(kExitChildReady);
  child.SayGo();
  child.ExpectToLeave();
}

INSTANTIATE_TEST_SUITE_P(
    While, LateProcessEndTest,
    ::testing::Values(Late{"AnObserverHangs", "return-while-an-observer-hangs", true},
                      Late{"TheListenerHangs", "return-while-the-listener-hangs", false},
                      Late{"ASlowObserverIsTheLast", "return-while-an-observer-is-slow", true},
                      Late{"CompletionsAreQueued", "return-with-queued-completions", true}),
    RowName());

TEST(ProcessEndTest, IsQuickDuringABlockingDownload) {
  ExpectQuickExit("return-during-a-blocking-download", RawServer(Silence()), kTransfers + 1);
}

// A program that is started meanwhile inherits nothing from the transfers.
TEST(ProcessEndTest, TransfersEndAfterForkAndExec) {
  Event answer;
  const RawServer server(HelloAfter(answer));
  Child child(STOWRA_EXIT_CHILD, {"fork-and-exec-then-end", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  const auto begin = Clock::now();
  child.SayGo();
  child.ExpectLine(kExitChildReady);
  EXPECT_LT(Clock::now() - begin, kPatience);
  answer.Set();
  child.ExpectToLeave();
}

class RequestsAtExitTest : public ::testing::TestWithParam<const char*> {};

TEST_P(RequestsAtExitTest, DoNotDelayExit) {
  ExpectQuickExit(GetParam(), RawServer(Silence()), kExitChildRequests);
}

constexpr const char* kWaysWithRequests[] = {
    "return-with-requests",
    "return-and-destroy-requests",
    "return-with-young-static-requests",
    "return-with-old-static-requests",
    "exit-with-requests",
#if !defined(__APPLE__)
    "quick-exit-with-requests",
#endif
    "exit-at-once-with-requests",
};

INSTANTIATE_TEST_SUITE_P(Ways, RequestsAtExitTest, ::testing::ValuesIn(kWaysWithRequests),
                         NameOfWay);

// A plugin that starts transfers or requests and is unloaded, and how many it starts.
struct Plugin {
  const char* name;
  const char* path;
  std::size_t transfers;
};

class UnloadedUserTest : public ::testing::TestWithParam<Plugin> {};

TEST_P(UnloadedUserTest, ExitIsQuick) {
  const RawServer server(Silence());
  Child child(STOWRA_UNLOAD_CHILD, {GetParam().path, server.Url()});
  ASSERT_TRUE(server.WaitForRequests(GetParam().transfers));
  child.SayGo();
  child.ExpectLine(kUnloadChildUnloaded);
  child.SayGo();
  child.ExpectToLeave();
}

TEST_P(UnloadedUserTest, TransfersEnd) {
  Event answer;
  const RawServer server([&](const RawRequest&, RawConnection& connection) {
    if (!answer.Wait()) return;
    connection.Write(Response(200, "hello", "Connection: close\r\n"));
  });
  Child child(STOWRA_UNLOAD_CHILD, {GetParam().path, server.Url()});
  ASSERT_TRUE(server.WaitForRequests(GetParam().transfers));
  child.SayGo();
  child.ExpectLine(kUnloadChildUnloaded);
  answer.Set();
  // Closed connections show that the library has read the answers.
  EXPECT_TRUE(server.WaitUntilUnused());
  child.SayGo();
  child.ExpectToLeave();
}

INSTANTIATE_TEST_SUITE_P(
    Plugins, UnloadedUserTest,
    ::testing::Values(Plugin{"of_the_platform", STOWRA_UNLOAD_PLUGIN, kTransfers},
                      Plugin{"of_requests", STOWRA_UNLOAD_REQUESTS_PLUGIN, kExitChildRequests}),
    RowName());

}  // namespace
}  // namespace stowra_test
