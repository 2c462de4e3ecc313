// Programs run as processes of their own.

#ifndef TESTS_HOST_CHILD_H_
#define TESTS_HOST_CHILD_H_

#include <sys/types.h>

#include <string>
#include <vector>

namespace stowra_test {

// A file descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;

  int number() const { return number_; }
  void Close();

  // Up to its end.
  std::string ReadAll() const;

 private:
  int Release();

  int number_;
};

// How a program ended and what it wrote.
struct Outcome {
  int status = 0;  // minus the signal, if one ended it
  std::string out;
  std::string err;
};

// What a program starts with. Of the test's own environment it also gets what does not change how
// it writes or which proxy it takes.
struct Start {
  std::vector<std::string> arguments;
  std::string input;
  std::vector<std::string> environment;  // "NAME=value"
};

// Fails the current test when the program cannot be run; ends it with SIGKILL when it still runs at
// destruction. Its output goes to files, and so never waits to be read.
class Child {
 public:
  Child(const std::string& program, const Start& start);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Signal(int number);

  // Waits for its end.
  Outcome Wait();

 private:
  pid_t pid_ = -1;
  Descriptor output_;
  Descriptor errors_;
};

Outcome RunProgram(const std::string& program, const Start& start);

// The same with a terminal for both outputs: what it got to see, in `out`.
Outcome RunOnTerminal(const std::string& program, const Start& start);

// A stowra-emulator, as long as the object lives.
class EmulatorProcess {
 public:
  EmulatorProcess();
  ~EmulatorProcess();
  EmulatorProcess(const EmulatorProcess&) = delete;
  EmulatorProcess& operator=(const EmulatorProcess&) = delete;

  // Without a slash at its end.
  const std::string& url() const { return url_; }

 private:
  pid_t pid_ = -1;
  std::string url_;
};

}  // namespace stowra_test

#endif  // TESTS_HOST_CHILD_H_
