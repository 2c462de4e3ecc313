// SPDX-License-Identifier: MIT
#include <sstream>

#include "common_stowraapi/version.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

struct UsageCase {
  std::vector<std::string> arguments;
  const char* message;  // a part of it
};

const UsageCase kWrongUsages[] = {
    {{}, "a command is needed (see stowra --help)"},
    {{"nonsense"}, "nonsense"},
    {{"-j"}, "-j"},
    {{"serach", kNowhere}, "did you mean search? (see stowra --help)"},
    {{"upload-confg", kNowhere}, "did you mean upload-config?"},
    {{"search", kNowhere, "--jsno"}, "--jsno; did you mean --json? (see stowra search --help)"},
    {{"search", kNowhere, "--time-out=5"}, "did you mean --timeout?"},
    {{"user-info", "ftp://h/x"}, "URL: 'ftp://h/x' is not an http or https URL"},
    {{"user-info", "x\ny\x1B[31m"}, "URL: 'x\\u000Ay\\u001B[31m' is not an http or https URL"},
    {{"user-info", "--url-base", "h"}, "--url-base: 'h' is not an http or https URL"},
    {{"search", "chair"}, "'chair' is not an http or https URL; words need --url-base"},
    {{"search", kNowhere, "chair"}, "WORDS: they do not go with a URL"},
    {{"download", "--url-base", kNowhere}, "URL is required"},
    {{"update", kNowhere, "--retry", "-1"}, "'-1' is not a number from 0 to 100"},
    {{"update", kNowhere, "--max-time", "0"}, "'0' is not a number of seconds"},
    {{"extensions", kNowhere, "--body", "x", "--retry", "1"}, "--retry"},
    {{"user-info"}, "URL is required (see stowra user-info --help)"},
    {{"user-info", ""}, "must not be empty (see stowra user-info --help)"},
    {{"user-info", kNowhere, "more"}, "more"},
    {{"user-info", kNowhere, "--nonsense"}, "--nonsense"},
    {{"user-info", kNowhere, "update", kNowhere}, "update"},
    {{"update", kNowhere, "--timeout"}, "--timeout"},
    {{"update", kNowhere, "--timeout", "soon"}, "'soon' is not a number of seconds"},
    {{"update", kNowhere, "--timeout", "0"}, "'0' is not a number of seconds"},
    {{"update", kNowhere, "--timeout", "-1"}, "'-1' is not a number of seconds"},
    {{"update", kNowhere, "--timeout", "nan"}, "'nan' is not a number of seconds"},
    {{"update", kNowhere, "--timeout", "inf"}, "'inf' is not a number of seconds"},
    {{"update", kNowhere, "--timeout", "1000001"},
     "'1000001' is not a number of seconds above 0 and up to 1000000"},
    {{"update", kNowhere, "--header"}, "--header"},
    {{"update", kNowhere, "--header", "no colon"}, "a header has the form \"Name: value\""},
    {{"update", kNowhere, "--header", " : no name"}, "'' cannot be the name of a header"},
    {{"update", kNowhere, "--header", "a b: c"}, "'a b' cannot be the name of a header"},
    {{"update", kNowhere, "--header", "A: two\nB: lines"}, "must not contain a line break"},
    {{"update", kNowhere, "--header", "@/nowhere/h"}, "/nowhere/h: No such file"},
    {{"update", kNowhere, "--header-to", kNowhere}, "--header-to"},
    {{"update", kNowhere, "--header-to", kNowhere, "no colon"}, "a header has the form"},
    {{"update", kNowhere, "--header-to", "Name: value", kNowhere}, "is not an http or https URL"},
    {{"update", kNowhere, "--cacert", "/nowhere/ca.pem"}, "/nowhere/ca.pem"},
    {{"extensions", kNowhere, "--body", "/nowhere/b.json"}, "--body /nowhere/b.json: No such file"},
    {{"extensions", kNowhere, "--body", "/"}, "--body /: Is a directory"},
    {{"extensions", kNowhere}, "--body is required (see stowra extensions --help)"},
    {{"search"}, "URL is required (see stowra search --help)"},
    {{"search", kNowhere, "--async"}, "--async"},
    {{"search", kNowhere, "--max-qmf-version", "-1"},
     "--max-qmf-version: '-1' is not a version number"},
    {{"search", kNowhere, "--max-qmf-version", "x"},
     "--max-qmf-version: 'x' is not a version number"},
    {{"search", kNowhere, "--max-qmf-version", "08"}, "'08' is not a version number"},
    {{"search", kNowhere, "--max-qmf-version", "8.5"}, "'8.5' is not a version number"},
    {{"search", kNowhere, "--max-qmf-version", "2147483648"},
     "'2147483648' is not a version number"},
    {{"download", kNowhere, "--max-bytes", "4X"}, "'4X' is not a number of bytes above 0"},
    {{"upload-config", kNowhere, "--async"}, "--async"},
    {{"download", kNowhere, "--async"}, "--async"},
    {{"download", kNowhere, "-o"}, "-o"},
    {{"download", kNowhere, "-o", ""}, "must not be empty (see stowra download --help)"},
    {{"download", kNowhere, "--continue"}, "--continue requires --output"},
    {{"upload"}, "CONFIG_URL is required (see stowra upload --help)"},
    {{"upload", kNowhere, "--subject-id", "m"}, "FILE is required"},
    {{"upload", kNowhere, "/nowhere/a.qmf", "--subject-id", "m"}, "/nowhere/a.qmf"},
    {{"upload", kNowhere, "/", "--subject-id", "m"}, "FILE"},
    {{"upload", kNowhere, kStowra}, "--subject-id is required (see stowra upload --help)"},
    {{"demo", kNowhere, "more"}, "more"},
};

TEST(UsageTest, ReportsWrongUsageInOneLine) {
  for (const auto& [arguments, message] : kWrongUsages) {
    EXPECT_THAT(RunStowra(arguments),
                Fails(2, AllOf(MatchesRegex("stowra: [^\n]*\n"), HasSubstr(message))))
        << testing::PrintToString(arguments);
  }
}

TEST(UsageTest, ReportsWrongUsageAsJson) {
  EXPECT_THAT(
      RunStowra({"search", "chair", "--json"}),
      Ends(2,
           R"({"error":{"reason":"usage","message":"URL: 'chair' is not an http or https URL; )"
           R"_(words need --url-base (see stowra search --help)","url":"","status":0,)_"
           R"("server_message":""}})"
           "\n",
           StartsWith("stowra: URL: 'chair' is not")));
}

TEST(UsageTest, HelpFitsTheTerminal) {
  const std::pair<std::vector<std::string>, std::size_t> rows[] = {{{}, 80}, {{"COLUMNS=60"}, 60}};
  for (const char* command : {"search", "upload", "extensions"}) {
    for (const auto& [environment, width] : rows) {
      std::istringstream lines(RunProgram(kStowra, {{command, "--help"}, "", environment}).out);
      for (std::string line; std::getline(lines, line);) {
        const bool is_one_word = line.find_first_of(' ', line.find_first_not_of(' ')) >= width;
        EXPECT_TRUE(line.size() <= width || is_one_word) << line;
      }
    }
  }
}

TEST(UsageTest, HelpShowsExamplesAndOptions) {
  const std::string help = RunStowra({"--help"}).out;
  for (const char* option : {"--help", "-h"}) {
    EXPECT_THAT(RunStowra({option}),
                Prints(AllOf(StartsWith("Examples:\n  stowra user-info http"),
                             HasSubstr("Usage: stowra"), HasSubstr("\n  demo"))));
  }
  EXPECT_THAT(RunStowra({"demo", "--help"}), Prints(AllOf(StartsWith("Examples:\n  stowra demo\n"),
                                                          HasSubstr("Usage: stowra demo"))));
  struct Row {
    std::string command;
    bool has_async;
    const char* example;
    const char* own_option;
  };
  const Row rows[] = {
      {"user-info", true, "http", ""},
      {"update", true, "http", ""},
      {"extensions", true, "http", "--body"},
      {"search", false, "'http://127.0.0.1:8080/search", "--all"},
      {"download", false, "'http", "--output"},
      {"upload-config", false, "http", ""},
      {"upload", false, "http", "--subject-id"},
  };
  for (const auto& [command, has_async, example, own_option] : rows) {
    EXPECT_THAT(help, HasSubstr("\n  " + command));
    const Outcome own = RunStowra({command, "--help"});
    EXPECT_THAT(own, Prints(AllOf(StartsWith("Examples:\n  stowra " + command + " " + example),
                                  HasSubstr("Usage: stowra " + command))));
    for (const char* option :
         {"--json", "--verbose", "--timeout", "--header", "--cacert", "Exit status", own_option}) {
      EXPECT_THAT(own.out, HasSubstr(option)) << command;
    }
    EXPECT_EQ(own.out.find("--async") != std::string::npos, has_async) << command;
  }
}

TEST(UsageTest, HelpExplainsTheUrl) {
  for (const char* command : {"upload", "upload-config"}) {
    EXPECT_THAT(RunStowra({command, "--help"}).out, HasSubstr("URL of the upload configuration"));
  }
  EXPECT_THAT(RunStowra({"search", "--help"}).out, HasSubstr("URL of the service"));
}

TEST(UsageTest, PrintsVersionOfTheLibrary) {
  const std::string version = std::to_string(COMMON_STOWRAAPI_VERSION_MAJOR) + "." +
                              std::to_string(COMMON_STOWRAAPI_VERSION_MINOR) + "." +
                              std::to_string(COMMON_STOWRAAPI_VERSION_PATCH);
  const std::string number = std::to_string(static_cast<int>(CommonStowraapiVersionNumber));
  EXPECT_THAT(RunStowra({"--version"}), Prints("stowra " + version + " with CommonStowraapi " +
                                               number + " (common_stowraapi-" + number + ")\n"));
}

TEST(UsageTest, ReportsStandardOutputThatCannotBeWritten) {
  EXPECT_THAT(RunProgram("/bin/sh", AfterCommand("exec >&-", {"--version"})),
              Fails(1, Message("standard output", "Bad file descriptor")));
}

}  // namespace
}  // namespace stowra_test
