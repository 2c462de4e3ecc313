#include "tests/host/child.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>

extern char** environ;

namespace stowra_test {

namespace {

constexpr std::array kWithheld = {
    "NO_COLOR=",    "TERM=",      "http_proxy=", "https_proxy=", "all_proxy=",
    "HTTPS_PROXY=", "ALL_PROXY=", "no_proxy=",   "NO_PROXY="};

bool IsWithheld(std::string_view variable) {
  for (const std::string_view name : kWithheld) {
    if (variable.substr(0, name.size()) == name) return true;
  }
  return false;
}

// A temporary file without a name, open at its start.
Descriptor MakeFile(const std::string& content) {
  std::string name = (std::filesystem::temp_directory_path() / "stowra-test-XXXXXX").string();
  Descriptor file(::mkstemp(name.data()));
  EXPECT_GE(file.number(), 0) << name;
  ::unlink(name.c_str());
  EXPECT_EQ(::write(file.number(), content.data(), content.size()),
            static_cast<ssize_t>(content.size()));
  EXPECT_EQ(::lseek(file.number(), 0, SEEK_SET), 0);
  return file;
}

std::string ReadFromStart(const Descriptor& file) {
  EXPECT_EQ(::lseek(file.number(), 0, SEEK_SET), 0);
  return file.ReadAll();
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> MakeEnvironment(const std::vector<std::string>& added) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!IsWithheld(*variable)) variables.emplace_back(*variable);
  }
  variables.insert(variables.end(), added.begin(), added.end());
  return variables;
}

// Returns the process id. On failure returns -1 and fails the current test.
pid_t Spawn(const std::string& program, const Start& start, int in, int out, int err) {
  std::vector<std::string> arguments = start.arguments;
  arguments.insert(arguments.begin(), program);
  const std::vector<std::string> environment = MakeEnvironment(start.environment);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
  pid_t pid = -1;
  EXPECT_EQ(::posix_spawn(&pid, program.c_str(), &actions, nullptr, Pointers(arguments).data(),
                          Pointers(environment).data()),
            0)
      << program;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

int WaitFor(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  Close();
  number_ = other.Release();
  return *this;
}

void Descriptor::Close() {
  if (number_ >= 0) ::close(Release());
}

int Descriptor::Release() { return std::exchange(number_, -1); }

std::string Descriptor::ReadAll() const {
  std::string text;
  char bytes[4096];
  while (true) {
    const ssize_t count = ::read(number_, bytes, sizeof(bytes));
    if (count > 0) {
      text.append(bytes, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {  // EIO: no process has the terminal open
      return text;
    }
  }
}

Child::Child(const std::string& program, const Start& start)
    : output_(MakeFile("")), errors_(MakeFile("")) {
  const Descriptor input = MakeFile(start.input);
  pid_ = Spawn(program, start, input.number(), output_.number(), errors_.number());
}

Child::~Child() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  WaitFor(pid_);
}

void Child::Signal(int number) {
  ASSERT_GT(pid_, 0);
  EXPECT_EQ(::kill(pid_, number), 0);
}

Outcome Child::Wait() {
  Outcome outcome;
  outcome.status = WaitFor(std::exchange(pid_, -1));
  outcome.out = ReadFromStart(output_);
  outcome.err = ReadFromStart(errors_);
  return outcome;
}

Outcome RunProgram(const std::string& program, const Start& start) {
  return Child(program, start).Wait();
}

Outcome RunOnTerminal(const std::string& program, const Start& start) {
  const Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
  EXPECT_EQ(::grantpt(master.number()), 0);
  EXPECT_EQ(::unlockpt(master.number()), 0);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the test has one thread
  Descriptor terminal(::open(::ptsname(master.number()), O_RDWR | O_NOCTTY));
  EXPECT_GE(terminal.number(), 0);
  const Descriptor input = MakeFile(start.input);
  const pid_t pid = Spawn(program, start, input.number(), terminal.number(), terminal.number());
  terminal.Close();
  Outcome outcome;
  outcome.out = master.ReadAll();
  outcome.status = WaitFor(pid);
  return outcome;
}

EmulatorProcess::EmulatorProcess() {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe(ends), 0);
  const Descriptor read_end(ends[0]);
  Descriptor write_end(ends[1]);
  const Descriptor input = MakeFile("");
  Start start;
  start.arguments = {"--quiet"};
  pid_ = Spawn(STOWRA_EMULATOR_PROGRAM, start, input.number(), write_end.number(), STDERR_FILENO);
  write_end.Close();
  char c = 0;
  while (::read(read_end.number(), &c, 1) == 1 && c != '\n') url_ += c;
  EXPECT_NE(url_, "");
}

EmulatorProcess::~EmulatorProcess() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGTERM);
  EXPECT_EQ(WaitFor(pid_), 0);
}

}  // namespace stowra_test
