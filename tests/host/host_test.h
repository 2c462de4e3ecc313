// SPDX-License-Identifier: MIT
// Shared by the tests of the program.

#ifndef TESTS_HOST_HOST_TEST_H_
#define TESTS_HOST_HOST_TEST_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/host/child.h"
#include "tests/support/corpora.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {

// The matchers of these tests.
using testing::_;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

inline constexpr const char* kStowra = STOWRA_PROGRAM;

// A user, as a service tells of it.
inline constexpr char kUser[] = R"({"uid":"u","email":"e","vkr_id":"v"})";

// For commands that end before they connect.
inline constexpr char kNowhere[] = "http://127.0.0.1:1/";

inline std::vector<std::string> Joined(std::vector<std::string> list,
                                       const std::vector<std::string>& more) {
  list.insert(list.end(), more.begin(), more.end());
  return list;
}

inline Outcome RunStowra(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunProgram(kStowra, {arguments, input, {}});
}

// The program after a shell command.
inline Start AfterCommand(const std::string& command, const std::vector<std::string>& arguments) {
  return {Joined({"-c", command + "; exec \"$0\" \"$@\"", kStowra}, arguments), "", {}};
}

inline Outcome ShowOnTerminal(const std::vector<std::string>& arguments,
                              const std::vector<std::string>& environment = {"TERM=xterm"}) {
  return RunOnTerminal(kStowra, {arguments, "", environment});
}

inline void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "status " << outcome.status << "\nstdout:\n" << outcome.out << "stderr:\n" << outcome.err;
}

using TextMatcher = testing::Matcher<const std::string&>;
using OutcomeMatcher = testing::Matcher<const Outcome&>;

// Match how a program ended. A failure has no output, a success no message.
inline OutcomeMatcher Ends(int status, const TextMatcher& out, const TextMatcher& err) {
  return testing::AllOf(testing::Field("status", &Outcome::status, status),
                        testing::Field("out", &Outcome::out, out),
                        testing::Field("err", &Outcome::err, err));
}
inline OutcomeMatcher Fails(int status, const TextMatcher& err) { return Ends(status, "", err); }
inline OutcomeMatcher Prints(const TextMatcher& out) { return Ends(0, out, ""); }

// A message about the file or URL `subject`.
inline std::string Message(const std::string& subject, const std::string& text) {
  return "stowra: " + subject + ": " + text + "\n";
}

// Answers every request with status 200 and this JSON text.
inline RawServer::Handler Replies(const std::string& body) {
  return Always(Response(200, body, "Content-Type: application/json\r\n"));
}

// Has a folder of its own.
class FolderTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (folder_.path() / name).string(); }

  // Writes a file and returns its path.
  std::string Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  // The names in the folder, each with the content of the file.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      files[entry.path().filename().string()] = entry.is_regular_file() ? ReadFile(entry) : "";
    }
    return files;
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& [name, content] : Files()) names.push_back(name);
    return names;
  }

  // stowra download in the folder, after a shell command.
  Start Download(const std::vector<std::string>& arguments,
                 const std::string& command = ":") const {
    return AfterCommand(command + "; cd '" + Path("") + "'", Joined({"download"}, arguments));
  }

 private:
  const TemporaryFolder folder_;
};

// Runs each test with and without --async. It expects the same of both.
class InBothModes : public testing::TestWithParam<const char*> {
 protected:
  static bool IsAsync() { return *GetParam() != '\0'; }

  static std::vector<std::string> InMode(const std::vector<std::string>& arguments) {
    return IsAsync() ? Joined(arguments, {GetParam()}) : arguments;
  }
  static Outcome RunInMode(const std::vector<std::string>& arguments,
                           const std::string& input = "") {
    return RunStowra(InMode(arguments), input);
  }
};

inline std::string ModeName(const testing::TestParamInfo<const char*>& mode) {
  return *mode.param == '\0' ? "Waiting" : "Async";
}

// Instantiates a test suite for both modes.
#define IN_BOTH_MODES(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::Values("", "--async"), ModeName)

}  // namespace stowra_test

#endif  // TESTS_HOST_HOST_TEST_H_
