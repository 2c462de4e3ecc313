// SPDX-License-Identifier: MIT
// Runs programs as child processes.

#ifndef TESTS_HOST_CHILD_H_
#define TESTS_HOST_CHILD_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/emulator/child_program.h"

namespace stowra_test {

// How a program ended and what it wrote.
struct Outcome {
  int status = 0;  // or minus the signal that ended it
  std::string out;
  std::string err;
};

// What a program starts with. It also inherits the test's environment, but no variable that sets a
// proxy or the terminal's abilities.
struct Start {
  std::vector<std::string> arguments;
  std::string input;
  std::vector<std::string> environment;  // "NAME=value"
};

// A running program. If it cannot start, the current test fails. The destructor kills a program
// that still runs. Output goes to files, so the program never waits for a reader.
class Child {
 public:
  Child(const std::string& program, const Start& start);

  void Signal(int number) { process_.Signal(number); }

  // Waits until the program ends.
  Outcome Wait();

 private:
  const OwnedDescriptor output_;
  const OwnedDescriptor errors_;
  ChildProcess process_;
};

Outcome RunProgram(const std::string& program, const Start& start);

// The same with a terminal as stdout and stderr. `out` holds what the terminal received.
Outcome RunOnTerminal(const std::string& program, const Start& start);

// A stowra-emulator that runs while the object lives.
class EmulatorProcess {
 public:
  ~EmulatorProcess() { EXPECT_EQ(program_.EndBy(SIGTERM), 0); }

  // Without a trailing slash.
  const std::string& url() const { return url_; }

 private:
  stowra_emulator::ChildProgram program_{{"--quiet"}};
  const std::string url_ = program_.ReadLine();
};

}  // namespace stowra_test

#endif  // TESTS_HOST_CHILD_H_
