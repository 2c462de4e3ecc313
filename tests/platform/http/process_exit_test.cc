// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/http/exit_child.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/certificates.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

extern char** environ;

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestExit(1);
constexpr std::size_t kTransfers = kExitChildTransfers;

// A child program, with pipes to its input and from its output.
class Child {
 public:
  explicit Child(std::vector<std::string> words) {
    std::array<int, 2> output = {-1, -1};
    EXPECT_EQ(pipe(input_.data()), 0);
    EXPECT_EQ(pipe(output.data()), 0);
    for (const int end : {input_[0], input_[1], output[0], output[1]}) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input_[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    output_ = output[0];
  }
  ~Child() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    for (const int end : {input_[0], input_[1], output_}) close(end);
  }

  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void SayGo() { EXPECT_EQ(write(input_[1], "go\n", 3), 3); }

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
    int status = 0;
    ASSERT_EQ(waitpid(pid_, &status, 0), pid_);
    pid_ = -1;
    EXPECT_LT(Clock::now() - begin, kLongestExit);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), kExitChildCode);
  }

 private:
  // Gives nothing at the end of the output, or when nothing comes within kPatience.
  std::optional<char> ReadByte() {
    pollfd readable = {output_, POLLIN, 0};
    const auto limit = std::chrono::milliseconds(kPatience).count();
    if (poll(&readable, 1, static_cast<int>(limit)) != 1) return std::nullopt;
    char byte = 0;
    if (read(output_, &byte, 1) == 1) return byte;
    output_ended_ = true;
    return std::nullopt;
  }

  pid_t pid_ = -1;
  // Both ends stay open here, so writing to a program that has ended raises no signal.
  std::array<int, 2> input_ = {-1, -1};
  int output_ = -1;
  bool output_ended_ = false;
};

std::string NameOfWay(const testing::TestParamInfo<const char*>& test) {
  std::string name = test.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class ProcessExitTest : public ::testing::TestWithParam<const char*> {};

// The server does not answer.
TEST_P(ProcessExitTest, IsQuickWhileTransfersAreStalled) {
  const RawServer server(Silence());
  Child child({STOWRA_EXIT_CHILD, GetParam(), server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  child.ExpectToLeave();
}

TEST_P(ProcessExitTest, IsQuickWhileTlsTransfersAreStalled) {
  const TemporaryFolder folder;
  const CertificateAuthority authority("trusted");
  authority.WriteTo(folder.path() / "authority.pem");
  const Certificate certificate = authority.Issue("IP:127.0.0.1");
  const RawServer server(Silence(), {&certificate, true, 0});
  Child child(
      {STOWRA_EXIT_CHILD, GetParam(), server.Url(), (folder.path() / "authority.pem").string()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  child.ExpectToLeave();
}

TEST_P(ProcessExitTest, IsQuickWhileBodiesArrive) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n\r\n");
    while (connection.Drip("x", std::chrono::milliseconds(1))) {
    }
  });
  Child child({STOWRA_EXIT_CHILD, GetParam(), server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  child.ExpectToLeave();
}

INSTANTIATE_TEST_SUITE_P(Ways, ProcessExitTest,
                         ::testing::Values("return", "return-and-destroy",
                                           "return-with-young-static", "exit",
                                           "exit-from-another-thread", "exit-inside-the-listener",
                                           "fork-and-exec", "fork-and-exit"),
                         NameOfWay);

class ProcessEndTest : public ::testing::Test {};

TEST_F(ProcessEndTest, StaticDestructorsMayUseTheTransport) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target == "/late") {
      connection.Write(Response(200, "hello"));
    } else {
      connection.Stall();
    }
  });
  Child child({STOWRA_EXIT_CHILD, "return-with-old-static", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  child.ExpectToLeave();
  EXPECT_EQ(server.requests().back().target, "/late");
}

TEST_F(ProcessEndTest, IsQuickFromInsideANotification) {
  Event answer;
  const RawServer server([&answer](const RawRequest&, RawConnection& connection) {
    if (answer.Wait()) connection.Write(Response(200, "hello"));
  });
  Child child({STOWRA_EXIT_CHILD, "exit-inside-a-notification", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  child.SayGo();
  answer.Set();
  child.ExpectToLeave();
}

TEST_F(ProcessEndTest, IsQuickWhileAnObserverHangs) {
  const RawServer server(Always(Response(200, "hello")));
  Child child({STOWRA_EXIT_CHILD, "return-while-an-observer-hangs", server.Url()});
  child.ExpectLine(kExitChildReady);
  child.SayGo();
  child.ExpectToLeave();
}

TEST_F(ProcessEndTest, IsQuickWhileTheListenerHangs) {
  const RawServer server(Silence());
  Child child({STOWRA_EXIT_CHILD, "return-while-the-listener-hangs", server.Url()});
  child.ExpectLine(kExitChildReady);
  child.SayGo();
  child.ExpectToLeave();
}

TEST_F(ProcessEndTest, NoObserverIsCalledAfterASlowOne) {
  const RawServer server(Always(Response(200, "hello")));
  Child child({STOWRA_EXIT_CHILD, "return-while-an-observer-is-slow", server.Url()});
  child.ExpectLine(kExitChildReady);
  child.SayGo();
  child.ExpectToLeave();
}

TEST_F(ProcessEndTest, IsQuickWhileCompletionsAreQueued) {
  const RawServer server(Always(Response(200, "hello")));
  Child child({STOWRA_EXIT_CHILD, "return-with-queued-completions", server.Url()});
  child.ExpectLine(kExitChildReady);
  child.SayGo();
  child.ExpectToLeave();
}

TEST_F(ProcessEndTest, IsQuickDuringABlockingDownload) {
  const RawServer server(Silence());
  Child child({STOWRA_EXIT_CHILD, "return-during-a-blocking-download", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers + 1));
  child.SayGo();
  child.ExpectToLeave();
}

// A program that is started meanwhile inherits nothing from the transfers.
TEST_F(ProcessEndTest, TransfersEndAfterForkAndExec) {
  Event answer;
  const RawServer server([&answer](const RawRequest&, RawConnection& connection) {
    if (answer.Wait()) connection.Write(Response(200, "hello"));
  });
  Child child({STOWRA_EXIT_CHILD, "fork-and-exec-then-end", server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kTransfers));
  const auto begin = Clock::now();
  child.SayGo();
  child.ExpectLine(kExitChildReady);
  EXPECT_LT(Clock::now() - begin, kLongestExit);
  answer.Set();
  child.ExpectToLeave();
}

class RequestsAtExitTest : public ::testing::TestWithParam<const char*> {};

TEST_P(RequestsAtExitTest, DoNotDelayExit) {
  const RawServer server(Silence());
  Child child({STOWRA_EXIT_CHILD, GetParam(), server.Url()});
  ASSERT_TRUE(server.WaitForRequests(kExitChildRequests));
  child.SayGo();
  child.ExpectToLeave();
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
  Child child({STOWRA_UNLOAD_CHILD, GetParam().path, server.Url()});
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
  Child child({STOWRA_UNLOAD_CHILD, GetParam().path, server.Url()});
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
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace stowra_test
