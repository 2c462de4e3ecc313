// SPDX-License-Identifier: MIT
// The emulator's program in a process of its own.

#ifndef TESTS_EMULATOR_CHILD_PROGRAM_H_
#define TESTS_EMULATOR_CHILD_PROGRAM_H_

#include <signal.h>
#include <unistd.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/child_process.h"

namespace stowra_emulator {

// Fails the current test if the program cannot start. The destructor ends it with SIGKILL if it
// still runs.
class ChildProgram {
 public:
  explicit ChildProgram(const std::vector<std::string>& arguments)
      : process_({STOWRA_EMULATOR_PROGRAM,
                  arguments,
                  {},
                  {},
                  {{output_.write_end.number(), STDOUT_FILENO},
                   {errors_.write_end.number(), STDERR_FILENO}}}) {
    output_.write_end.Close();
    errors_.write_end.Close();
  }

  // Waits for a line of its standard output. Returns it without the line end.
  std::string ReadLine() {
    std::string line;
    for (std::string c; output_.read_end.ReadExactly(1, c) && c != "\n";) line += c;
    return line;
  }

  // Waits for its end. Returns its exit status, or minus the signal that ended it.
  int Wait() { return process_.Wait(); }

  // Sends it a signal first.
  int EndBy(int signal) {
    process_.Signal(signal);
    return Wait();
  }

  // After Wait: the most memory that it has used (bytes).
  std::size_t peak_memory() const { return process_.peak_memory(); }

  // The rest of its standard output or standard error.
  std::string ReadOutput() const { return output_.read_end.ReadAll(); }
  std::string ReadErrors() const { return errors_.read_end.ReadAll(); }

 private:
  stowra_test::OwnedPipe output_;
  stowra_test::OwnedPipe errors_;
  stowra_test::ChildProcess process_;
};

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_CHILD_PROGRAM_H_
