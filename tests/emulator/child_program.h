// A program run as another process.

#ifndef TESTS_EMULATOR_CHILD_PROGRAM_H_
#define TESTS_EMULATOR_CHILD_PROGRAM_H_

#include <sys/types.h>

#include <string>
#include <vector>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Fails the current test when the program cannot be run. Ends it with SIGKILL if it still runs at
// destruction.
class ChildProgram {
 public:
  ChildProgram(const std::string& program, const std::vector<std::string>& arguments);
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  // A line of its standard output, without the end of line. Waits for it.
  std::string ReadLine();

  void Signal(int number);

  // Waits for its end. The exit status, or minus the signal that ended it.
  int Wait();

  // The rest of its two outputs, up to their ends.
  std::string ReadOutput();
  std::string ReadErrors();

 private:
  pid_t pid_ = -1;
  FileDescriptor output_;
  FileDescriptor errors_;
};

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_CHILD_PROGRAM_H_
