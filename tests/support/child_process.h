// SPDX-License-Identifier: MIT
// Runs programs as child processes of a test.

#ifndef TESTS_SUPPORT_CHILD_PROCESS_H_
#define TESTS_SUPPORT_CHILD_PROCESS_H_

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_test {

// Owns a file descriptor and closes it. Child processes do not inherit it.
class OwnedDescriptor {
 public:
  explicit OwnedDescriptor(int number = -1);
  ~OwnedDescriptor() { Close(); }
  OwnedDescriptor(OwnedDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  int number() const { return number_; }
  void Close();

  // Write all of `bytes`, or read exactly `count`. False on an error or if the other end closes.
  bool WriteAll(std::string_view bytes) const;
  bool ReadExactly(std::size_t count, std::string& bytes) const;

  // Reads up to the end of the file or an error.
  std::string ReadAll() const;

 private:
  int number_;
};

struct OwnedPipe {
  OwnedPipe();

  OwnedDescriptor read_end;
  OwnedDescriptor write_end;
};

// Kills the child with SIGKILL if it still runs at destruction.
class ChildProcess {
 public:
  struct Start {
    std::string program;                           // a path
    std::vector<std::string> arguments;            // without the program's name
    std::vector<std::string> environment;          // "NAME=value", added to the test's own
    std::vector<std::string> withheld;             // names that the child does not get of that
    std::vector<std::pair<int, int>> descriptors;  // (number here, number in the child)
  };

  // Fails the current test if the program cannot run.
  explicit ChildProcess(const Start& start);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void Signal(int number) const;

  // Waits for the end. Returns the exit status, or minus the signal that ended the child.
  int Wait();

  // After Wait: the most memory that the child has used (bytes).
  std::size_t peak_memory() const { return peak_memory_; }

 private:
  pid_t pid_ = -1;
  std::size_t peak_memory_ = 0;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_CHILD_PROCESS_H_
