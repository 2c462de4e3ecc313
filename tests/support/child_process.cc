// SPDX-License-Identifier: MIT
#include "tests/support/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

extern char** environ;

namespace stowra_test {
namespace {

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

bool IsWithheld(const std::string& variable, const std::vector<std::string>& names) {
  const std::string name = variable.substr(0, variable.find('='));
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

OwnedDescriptor::OwnedDescriptor(int number) : number_(number) {
  if (number_ >= 0) ::fcntl(number_, F_SETFD, FD_CLOEXEC);
}

void OwnedDescriptor::Close() {
  if (number_ >= 0) ::close(std::exchange(number_, -1));
}

bool OwnedDescriptor::WriteAll(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(number_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool OwnedDescriptor::ReadExactly(std::size_t count, std::string& bytes) const {
  bytes.resize(count);
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = ::read(number_, bytes.data() + done, count - done);
    if (got == 0 || (got < 0 && errno != EINTR)) return false;
    if (got > 0) done += static_cast<std::size_t>(got);
  }
  return true;
}

std::string OwnedDescriptor::ReadAll() const {
  std::string text;
  char bytes[4096];
  for (;;) {
    const ssize_t count = ::read(number_, bytes, sizeof(bytes));
    if (count == 0 || (count < 0 && errno != EINTR)) return text;
    if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
  }
}

OwnedPipe::OwnedPipe() {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe(ends), 0);
  read_end = OwnedDescriptor(ends[0]);
  write_end = OwnedDescriptor(ends[1]);
}

ChildProcess::ChildProcess(const Start& start) {
  std::vector<std::string> arguments = start.arguments;
  arguments.insert(arguments.begin(), start.program);
  std::vector<std::string> environment = start.environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!IsWithheld(*variable, start.withheld)) environment.emplace_back(*variable);
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const auto& [own, childs] : start.descriptors) {
    posix_spawn_file_actions_adddup2(&actions, own, childs);
  }
  EXPECT_EQ(::posix_spawn(&pid_, start.program.c_str(), &actions, nullptr,
                          Pointers(arguments).data(), Pointers(environment).data()),
            0)
      << "cannot run " << start.program;
  posix_spawn_file_actions_destroy(&actions);
}

ChildProcess::~ChildProcess() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  Wait();
}

void ChildProcess::Signal(int number) const {
  ASSERT_GT(pid_, 0);
  EXPECT_EQ(::kill(pid_, number), 0);
}

int ChildProcess::Wait() {
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

}  // namespace stowra_test
