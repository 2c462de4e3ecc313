// SPDX-License-Identifier: MIT
#include <signal.h>

#include <filesystem>

#include "tests/emulator/child_program.h"
#include "tests/emulator/raw_client.h"
#include "tests/support/temporary_folder.h"

namespace stowra_emulator {
namespace {

int GetStatus(const std::string& url, const std::string& target) {
  return RawGet(PortOf(url), target).status();
}

TEST(ProgramTest, PrintsAddressAndServesUntilInterrupted) {
  for (const int signal : {SIGINT, SIGTERM}) {
    ChildProgram program({});
    const std::string url = program.ReadLine();
    EXPECT_THAT(url, MatchesRegex("http://127\\.0\\.0\\.1:[0-9]+"));
    EXPECT_EQ(GetStatus(url, "/user-info"), 200);
    EXPECT_EQ(program.EndBy(signal), 0);
    EXPECT_EQ(program.ReadOutput(), "") << "more than one line";
    EXPECT_THAT(program.ReadErrors(), MatchesRegex("GET /user-info 200 [0-9]+\n"));
  }
}

TEST(ProgramTest, EndsSoonDuringASlowResponse) {
  ChildProgram program({"--quiet"});
  RawClient client(PortOf(program.ReadLine()));
  client.Send(GetRequest("/user-info?fault=drip:60000"));
  client.ReadUntil("\r\n\r\n");
  EXPECT_LT(TimeOf([&program] { EXPECT_EQ(program.EndBy(SIGTERM), 0); }), kPatience);
}

TEST(ProgramTest, QuietLogsNothing) {
  ChildProgram program({"--quiet"});
  EXPECT_EQ(GetStatus(program.ReadLine(), "/user-info"), 200);
  EXPECT_EQ(program.EndBy(SIGTERM), 0);
  EXPECT_EQ(program.ReadErrors(), "");
}

TEST(ProgramTest, ListensOnTheGivenPort) {
  const std::string port = std::to_string(Emulator().port());
  ChildProgram program({"--port", port});
  EXPECT_EQ(program.ReadLine(), "http://127.0.0.1:" + port);
}

TEST(ProgramTest, CreatesAndReusesDatabaseFile) {
  const stowra_test::TemporaryFolder folder;
  const std::string file = (folder.path() / "services.db").string();
  for (int run = 0; run < 2; ++run) {
    ChildProgram program({"--database", file});
    EXPECT_EQ(GetStatus(program.ReadLine(), "/user-info"), 200);
    EXPECT_TRUE(std::filesystem::exists(file));
  }
}

TEST(ProgramTest, ReportsWrongUsageAndOtherFailures) {
  const Emulator other;
  const std::string taken = std::to_string(other.port());
  const char* const any = "(.|\n)+";
  const std::tuple<std::vector<std::string>, int, const char*> rows[] = {
      {{"--nope"}, 2, any},
      {{"extra"}, 2, any},
      {{"--port"}, 2, any},
      {{"--port", "x"}, 2, any},
      {{"--port", "65536"}, 2, any},
      {{"--port", "-1"}, 2, any},
      {{"--database"}, 2, any},
      {{"--fault"}, 2, any},
      {{"--fault", "/update"}, 2, any},
      {{"--seed", "x"}, 2, any},
      {{"--fault", "/nope=reset"},
       2,
       "stowra-emulator: --fault: no route '/nope'; [^\n]*/update[^\n]*\n"},
      {{"--fault", "/update=nope"},
       2,
       "stowra-emulator: --fault: no fault 'nope'; [^\n]*status:CODE[^\n]*\n"},
      {{"--port", taken}, 1, "stowra-emulator: cannot listen on 127\\.0\\.0\\.1:[0-9]+: [^\n]+\n"},
      {{"--database", STOWRA_EMULATOR_PROGRAM},
       1,
       "stowra-emulator: cannot open the database [^\n]+\n"},
  };
  for (const auto& [arguments, status, errors] : rows) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    ChildProgram program(arguments);
    EXPECT_EQ(program.Wait(), status);
    EXPECT_EQ(program.ReadOutput(), "");
    EXPECT_THAT(program.ReadErrors(), MatchesRegex(errors));
  }
}

TEST(ProgramTest, PlaysFaultsThatTheSeedRepeats) {
  std::vector<std::vector<int>> runs;
  for (const char* seed : {"5", "5", "6"}) {
    ChildProgram program({"--fault", "/update=status:503@50", "--fault", "/search=status:404",
                          "--seed", seed, "--quiet"});
    const std::string url = program.ReadLine();
    EXPECT_EQ(GetStatus(url, "/search"), 404);
    std::vector<int>& statuses = runs.emplace_back();
    for (int i = 0; i < 24; ++i) statuses.push_back(GetStatus(url, "/update"));
  }
  EXPECT_EQ(runs[0], runs[1]);
  EXPECT_NE(runs[0], runs[2]);
  EXPECT_THAT(runs[0], testing::IsSupersetOf({200, 503}));
}

TEST(ProgramTest, PrintsVersion) {
  ChildProgram program({"--version"});
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_EQ(program.ReadOutput(), "stowra-emulator " STOWRA_VERSION "\n");
}

TEST(ProgramTest, HelpBeginsWithExamples) {
  ChildProgram program({"--help"});
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
