// SPDX-License-Identifier: MIT
#include "tests/emulator/child_program.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>

extern char** environ;

namespace stowra_emulator {
namespace {

struct Pipe {
  Pipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    read_end = FileDescriptor(ends[0]);
    write_end = FileDescriptor(ends[1]);
  }
  FileDescriptor read_end;
  FileDescriptor write_end;
};

std::string ReadAll(const FileDescriptor& from) {
  std::string text;
  char bytes[4096];
  while (true) {
    const ssize_t count = ::read(from.get(), bytes, sizeof(bytes));
    if (count > 0) {
      text.append(bytes, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return text;
    }
  }
}

}  // namespace

ChildProgram::ChildProgram(const std::string& program, const std::vector<std::string>& arguments) {
  Pipe output;
  Pipe errors;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output.write_end.get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.write_end.get(), STDERR_FILENO);
  std::vector<char*> argv = {const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  EXPECT_EQ(::posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  output_ = std::move(output.read_end);
  errors_ = std::move(errors.read_end);
}

ChildProgram::~ChildProgram() {
  if (pid_ > 0) {
    Signal(SIGKILL);
    Wait();
  }
}

std::string ChildProgram::ReadLine() {
  std::string line;
  char c;
  while (::read(output_.get(), &c, 1) == 1 && c != '\n') line += c;
  return line;
}

void ChildProgram::Signal(int number) {
  ASSERT_GT(pid_, 0);
  EXPECT_EQ(::kill(pid_, number), 0);
}

int ChildProgram::Wait() {
  int status = 0;
  rusage usage = {};
  while (::wait4(pid_, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  pid_ = -1;
#ifdef __APPLE__
  constexpr std::size_t kUnit = 1;
#else
  constexpr std::size_t kUnit = 1024;
#endif
  peak_memory_ = static_cast<std::size_t>(usage.ru_maxrss) * kUnit;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string ChildProgram::ReadOutput() { return ReadAll(output_); }

std::string ChildProgram::ReadErrors() { return ReadAll(errors_); }

}  // namespace stowra_emulator
