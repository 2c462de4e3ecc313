// SPDX-License-Identifier: MIT
// A program that runs in a process of its own.

#ifndef TESTS_EMULATOR_CHILD_PROGRAM_H_
#define TESTS_EMULATOR_CHILD_PROGRAM_H_

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Fails the current test if the program cannot start. The destructor ends it with SIGKILL if it
// still runs.
class ChildProgram {
 public:
  ChildProgram(const std::string& program, const std::vector<std::string>& arguments);
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  // Waits for a line of its standard output. Returns it without the line end.
  std::string ReadLine();

  void Signal(int number);

  // Waits for its end. Returns its exit status, or minus the signal that ended it.
  int Wait();

  // After Wait: the most memory that it has used (bytes).
  std::size_t peak_memory() const { return peak_memory_; }

  // The rest of its standard output or standard error.
  std::string ReadOutput();
  std::string ReadErrors();

 private:
  pid_t pid_ = -1;
  FileDescriptor output_;
  FileDescriptor errors_;
  std::size_t peak_memory_ = 0;
};

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_CHILD_PROGRAM_H_
