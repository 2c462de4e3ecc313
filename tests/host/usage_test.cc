// SPDX-License-Identifier: MIT
#include <sstream>

#include "common_stowraapi/version.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kUrl[] = "http://127.0.0.1:1/";

struct UsageCase {
  std::vector<std::string> arguments;
  const char* message;  // a part of it
};

const UsageCase kWrongUsages[] = {
    {{}, "a command is needed (see stowra --help)"},
    {{"nonsense"}, "nonsense"},
    {{"-j"}, "-j"},
    {{"serach", kUrl}, "did you mean search? (see stowra --help)"},
    {{"upload-confg", kUrl}, "did you mean upload-config?"},
    {{"search", kUrl, "--jsno"}, "--jsno; did you mean --json? (see stowra search --help)"},
    {{"search", kUrl, "--time-out=5"}, "did you mean --timeout?"},
    {{"user-info", "ftp://h/x"}, "URL: 'ftp://h/x' is not an http or https URL"},
    {{"user-info", "--url-base", "h"}, "--url-base: 'h' is not an http or https URL"},
    {{"search", "chair"}, "'chair' is not an http or https URL; words need --url-base"},
    {{"search", kUrl, "chair"}, "WORDS: they do not go with a URL"},
    {{"download", "--url-base", kUrl}, "URL is required"},
    {{"update", kUrl, "--retry", "-1"}, "'-1' is not a number from 0 to 100"},
    {{"update", kUrl, "--max-time", "0"}, "'0' is not a number of seconds"},
    {{"extensions", kUrl, "--body", "x", "--retry", "1"}, "--retry"},
    {{"user-info"}, "URL is required (see stowra user-info --help)"},
    {{"user-info", ""}, "must not be empty (see stowra user-info --help)"},
    {{"user-info", kUrl, "more"}, "more"},
    {{"user-info", kUrl, "--nonsense"}, "--nonsense"},
    {{"user-info", kUrl, "update", kUrl}, "update"},
    {{"update", kUrl, "--timeout"}, "--timeout"},
    {{"update", kUrl, "--timeout", "soon"}, "'soon' is not a number of seconds"},
    {{"update", kUrl, "--timeout", "0"}, "'0' is not a number of seconds"},
    {{"update", kUrl, "--timeout", "-1"}, "'-1' is not a number of seconds"},
    {{"update", kUrl, "--timeout", "nan"}, "'nan' is not a number of seconds"},
    {{"update", kUrl, "--timeout", "inf"}, "'inf' is not a number of seconds"},
    {{"update", kUrl, "--timeout", "1000001"},
     "'1000001' is not a number of seconds above 0 and up to 1000000"},
    {{"update", kUrl, "--header"}, "--header"},
    {{"update", kUrl, "--header", "no colon"}, "a header has the form \"Name: value\""},
    {{"update", kUrl, "--header", " : no name"}, "'' cannot be the name of a header"},
    {{"update", kUrl, "--header", "a b: c"}, "'a b' cannot be the name of a header"},
    {{"update", kUrl, "--header", "A: two\nB: lines"}, "must not contain a line break"},
    {{"update", kUrl, "--header", "@/nowhere/h"}, "/nowhere/h: No such file"},
    {{"update", kUrl, "--header-to", kUrl}, "--header-to"},
    {{"update", kUrl, "--header-to", kUrl, "no colon"}, "a header has the form"},
    {{"update", kUrl, "--header-to", "Name: value", kUrl}, "is not an http or https URL"},
    {{"update", kUrl, "--cacert", "/nowhere/ca.pem"}, "/nowhere/ca.pem"},
    {{"extensions", kUrl}, "--body is required (see stowra extensions --help)"},
    {{"search"}, "URL is required (see stowra search --help)"},
    {{"search", kUrl, "--async"}, "--async"},
    {{"search", kUrl, "--max-qmf-version", "-1"},
     "--max-qmf-version: '-1' is not a version number"},
    {{"search", kUrl, "--max-qmf-version", "x"}, "--max-qmf-version: 'x' is not a version number"},
    {{"search", kUrl, "--max-qmf-version", "08"}, "'08' is not a version number"},
    {{"search", kUrl, "--max-qmf-version", "8.5"}, "'8.5' is not a version number"},
    {{"search", kUrl, "--max-qmf-version", "2147483648"}, "'2147483648' is not a version number"},
    {{"download", kUrl, "--max-bytes", "0"}, "'0' is not a number of bytes above 0"},
    {{"download", kUrl, "--max-bytes", "-1"}, "'-1' is not a number of bytes above 0"},
    {{"download", kUrl, "--max-bytes", "4X"}, "'4X' is not a number of bytes above 0"},
    {{"download", kUrl, "--max-bytes", "18446744073709551616"}, "is not a number of bytes above 0"},
    {{"upload-config", kUrl, "--async"}, "--async"},
    {{"download", kUrl, "--async"}, "--async"},
    {{"download", kUrl, "-o"}, "-o"},
    {{"upload"}, "CONFIG_URL is required (see stowra upload --help)"},
    {{"upload", kUrl, "--subject-id", "m"}, "FILE is required"},
    {{"upload", kUrl, "/nowhere/a.qmf", "--subject-id", "m"}, "/nowhere/a.qmf"},
    {{"upload", kUrl, "/", "--subject-id", "m"}, "FILE"},
    {{"upload", kUrl, kStowra}, "--subject-id is required (see stowra upload --help)"},
    {{"demo", kUrl, "more"}, "more"},
};

TEST(UsageTest, ReportsWrongUsageInOneLine) {
  for (const auto& [arguments, message] : kWrongUsages) {
    const Outcome outcome = RunStowra(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.out, "") << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, StartsWith("stowra: ")) << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
  }
}

TEST(UsageTest, ReportsWrongUsageAsJson) {
  const Outcome outcome = RunStowra({"search", "chair", "--json"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out,
            R"({"error":{"reason":"usage","message":"URL: 'chair' is not an http or https URL; )"
            R"_(words need --url-base (see stowra search --help)","url":"","status":0,)_"
            R"("server_message":""}})"
            "\n");
  EXPECT_THAT(outcome.err, StartsWith("stowra: URL: 'chair' is not"));
}

TEST(UsageTest, HelpFitsTheTerminal) {
  for (const char* command : {"search", "upload", "extensions"}) {
    Start start;
    start.arguments = {command, "--help"};
    for (const std::size_t width : {std::size_t{60}, std::size_t{80}}) {
      if (width != 80) start.environment = {"COLUMNS=" + std::to_string(width)};
      if (width == 80) start.environment.clear();
      std::istringstream lines(RunProgram(kStowra, start).out);
      for (std::string line; std::getline(lines, line);) {
        const bool is_one_word = line.find_first_of(' ', line.find_first_not_of(' ')) >= width;
        EXPECT_TRUE(line.size() <= width || is_one_word) << line;
      }
    }
  }
}

TEST(UsageTest, HelpBeginsWithExamples) {
  const struct {
    std::vector<std::string> arguments;
    const char* example;
  } cases[] = {
      {{"--help"}, "  stowra user-info http"},
      {{"-h"}, "  stowra user-info http"},
      {{"user-info", "--help"}, "  stowra user-info http"},
      {{"update", "--help"}, "  stowra update http"},
      {{"extensions", "--help"}, "  stowra extensions http"},
      {{"search", "--help"}, "  stowra search 'http"},
      {{"download", "--help"}, "  stowra download 'http"},
      {{"upload-config", "--help"}, "  stowra upload-config http"},
      {{"upload", "--help"}, "  stowra upload http"},
      {{"demo", "--help"}, "  stowra demo\n"},
  };
  for (const auto& [arguments, example] : cases) {
    const Outcome outcome = RunStowra(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, StartsWith(std::string("Examples:\n") + example));
    EXPECT_THAT(outcome.out,
                HasSubstr("Usage: " + (arguments.size() == 1 ? std::string("stowra")
                                                             : "stowra " + arguments[0])));
    EXPECT_EQ(outcome.err, "");
  }
}

TEST(UsageTest, HelpListsCommandsAndOptions) {
  const std::string help = RunStowra({"--help"}).out;
  for (const char* command : {"user-info", "update", "extensions"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + command));
    const std::string own = RunStowra({command, "--help"}).out;
    for (const char* option :
         {"--async", "--json", "--verbose", "--timeout", "--header", "--cacert", "Exit status"}) {
      EXPECT_THAT(own, HasSubstr(option)) << command;
    }
  }
  EXPECT_THAT(RunStowra({"extensions", "--help"}).out, HasSubstr("--body"));
  for (const char* command : {"search", "upload-config", "upload", "download"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + command));
    const std::string own = RunStowra({command, "--help"}).out;
    for (const char* option :
         {"--json", "--verbose", "--timeout", "--header", "--cacert", "Exit status"}) {
      EXPECT_THAT(own, HasSubstr(option)) << command;
    }
    EXPECT_THAT(own, testing::Not(HasSubstr("--async"))) << command;
  }
  EXPECT_THAT(help, HasSubstr("\n  demo"));
  EXPECT_THAT(RunStowra({"search", "--help"}).out, HasSubstr("--all"));
  EXPECT_THAT(RunStowra({"upload", "--help"}).out, HasSubstr("--subject-id"));
  EXPECT_THAT(RunStowra({"download", "--help"}).out, HasSubstr("--output"));
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
  const Outcome outcome = RunStowra({"--version"});
  EXPECT_EQ(outcome.status, 0);
  const std::string number = std::to_string(static_cast<int>(CommonStowraapiVersionNumber));
  EXPECT_EQ(outcome.out, "stowra " + version + " with CommonStowraapi " + number +
                             " (common_stowraapi-" + number + ")\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(UsageTest, ReportsStandardOutputThatCannotBeWritten) {
  Start start;
  start.arguments = {"-c", "exec \"$0\" --version >&-", kStowra};
  const Outcome outcome = RunProgram("/bin/sh", start);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "stowra: standard output: Bad file descriptor\n");
}

}  // namespace
}  // namespace stowra_test
