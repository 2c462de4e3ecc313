// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "emulator/emulator.h"
#include "tests/emulator/child_program.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr const char* kProgram = STOWRA_EMULATOR_PROGRAM;

int GetStatus(const std::string& url, const std::string& target) {
  const httplib::Result result = httplib::Client(url).Get(target);
  return result ? result->status : -1;
}

TEST(ProgramTest, PrintsAddressAndServesUntilInterrupted) {
  for (const int signal : {SIGINT, SIGTERM}) {
    ChildProgram program(kProgram, {});
    const std::string url = program.ReadLine();
    EXPECT_THAT(url, MatchesRegex("http://127\\.0\\.0\\.1:[0-9]+"));
    EXPECT_EQ(GetStatus(url, "/user-info"), 200);
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 0);
    EXPECT_EQ(program.ReadOutput(), "") << "more than one line";
    EXPECT_THAT(program.ReadErrors(), MatchesRegex("GET /user-info 200 [0-9]+\n"));
  }
}

TEST(ProgramTest, EndsSoonDuringASlowResponse) {
  ChildProgram program(kProgram, {"--quiet"});
  const std::string url = program.ReadLine();
  RawClient client(static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1))));
  client.Send(GetRequest("/user-info?fault=drip:60000"));
  client.ReadUntil("\r\n\r\n");
  const auto start = std::chrono::steady_clock::now();
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(ProgramTest, QuietLogsNothing) {
  ChildProgram program(kProgram, {"--quiet"});
  EXPECT_EQ(GetStatus(program.ReadLine(), "/user-info"), 200);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_EQ(program.ReadErrors(), "");
}

TEST(ProgramTest, ListensOnTheGivenPort) {
  std::string port;
  {
    const Emulator free_port;
    port = std::to_string(free_port.port());
  }
  ChildProgram program(kProgram, {"--port", port});
  EXPECT_EQ(program.ReadLine(), "http://127.0.0.1:" + port);
}

TEST(ProgramTest, ReportsTakenPortInOneLine) {
  const Emulator other;
  ChildProgram program(kProgram, {"--port", std::to_string(other.port())});
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.ReadOutput(), "");
  EXPECT_THAT(program.ReadErrors(),
              MatchesRegex("stowra-emulator: cannot listen on 127\\.0\\.0\\.1:[0-9]+: [^\n]+\n"));
}

TEST(ProgramTest, ReportsUnreadableDatabaseInOneLine) {
  ChildProgram program(kProgram, {"--database", kProgram});
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.ReadOutput(), "");
  EXPECT_THAT(program.ReadErrors(),
              MatchesRegex("stowra-emulator: cannot open the database [^\n]+\n"));
}

TEST(ProgramTest, CreatesAndReusesDatabaseFile) {
  std::string folder = (std::filesystem::temp_directory_path() / "emulator-XXXXXX").string();
  ASSERT_NE(::mkdtemp(folder.data()), nullptr);
  const std::string file = folder + "/services.db";
  for (int run = 0; run < 2; ++run) {
    ChildProgram program(kProgram, {"--database", file});
    EXPECT_EQ(GetStatus(program.ReadLine(), "/user-info"), 200);
    EXPECT_TRUE(std::filesystem::exists(file));
  }
  std::filesystem::remove_all(folder);
}

TEST(ProgramTest, WrongUsageEndsWithStatusTwo) {
  const std::vector<std::vector<std::string>> usages = {
      {"--nope"},       {"extra"},      {"--port"},  {"--port", "x"},        {"--port", "65536"},
      {"--port", "-1"}, {"--database"}, {"--fault"}, {"--fault", "/update"}, {"--seed", "x"}};
  for (const std::vector<std::string>& usage : usages) {
    ChildProgram program(kProgram, usage);
    EXPECT_EQ(program.Wait(), 2) << usage[0];
    EXPECT_EQ(program.ReadOutput(), "") << usage[0];
    EXPECT_NE(program.ReadErrors(), "") << usage[0];
  }
}

TEST(ProgramTest, WrongFaultIsUsageErrorThatListsWhatExists) {
  ChildProgram route(kProgram, {"--fault", "/nope=reset"});
  EXPECT_EQ(route.Wait(), 2);
  EXPECT_THAT(route.ReadErrors(),
              MatchesRegex("stowra-emulator: --fault: no route '/nope'; [^\n]*/update[^\n]*\n"));
  ChildProgram kind(kProgram, {"--fault", "/update=nope"});
  EXPECT_EQ(kind.Wait(), 2);
  EXPECT_THAT(kind.ReadErrors(),
              MatchesRegex("stowra-emulator: --fault: no fault 'nope'; [^\n]*status:CODE[^\n]*\n"));
}

TEST(ProgramTest, PlaysFaultsThatTheSeedRepeats) {
  std::vector<std::vector<int>> runs;
  for (const char* seed : {"5", "5", "6"}) {
    ChildProgram program(kProgram, {"--fault", "/update=status:503@50", "--fault",
                                    "/search=status:404", "--seed", seed, "--quiet"});
    const std::string url = program.ReadLine();
    EXPECT_EQ(GetStatus(url, "/search"), 404);
    std::vector<int>& statuses = runs.emplace_back();
    for (int i = 0; i < 24; ++i) statuses.push_back(GetStatus(url, "/update"));
  }
  EXPECT_EQ(runs[0], runs[1]);
  EXPECT_NE(runs[0], runs[2]);
  EXPECT_THAT(runs[0], testing::IsSupersetOf({200, 503}));
}

TEST(ProgramTest, TlsPrintsAddressThenCaFile) {
  ChildProgram program(kProgram, {"--tls", "--quiet"});
  const std::string url = program.ReadLine();
  EXPECT_THAT(url, StartsWith("https://127.0.0.1:"));
  const std::string ca_file = program.ReadLine();
  httplib::Client client(url);
  client.set_ca_cert_path(ca_file);
  EXPECT_EQ(client.Get("/user-info")->status, 200);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_FALSE(std::filesystem::exists(ca_file));
}

TEST(ProgramTest, PrintsVersion) {
  ChildProgram program(kProgram, {"--version"});
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_EQ(program.ReadOutput(), "stowra-emulator " STOWRA_VERSION "\n");
}

TEST(ProgramTest, HelpBeginsWithExamples) {
  ChildProgram program(kProgram, {"--help"});
  EXPECT_EQ(program.Wait(), 0);
  const std::string help = program.ReadOutput();
  EXPECT_THAT(help, StartsWith("Examples:\n"));
  for (const char* option :
       {"--port", "--listen", "--tls", "--database", "--fault", "--seed", "--quiet", "--version"}) {
    EXPECT_THAT(help, HasSubstr(option));
  }
}

}  // namespace
}  // namespace stowra_emulator
