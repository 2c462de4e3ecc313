// SPDX-License-Identifier: MIT
#include "tests/host/child.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

namespace stowra_test {
namespace {

// A temporary file without a name, open at its start.
OwnedDescriptor MakeFile(const std::string& content) {
  std::string name = (std::filesystem::temp_directory_path() / "stowra-test-XXXXXX").string();
  OwnedDescriptor file(::mkstemp(name.data()));
  EXPECT_GE(file.number(), 0) << name;
  ::unlink(name.c_str());
  EXPECT_TRUE(file.WriteAll(content));
  EXPECT_EQ(::lseek(file.number(), 0, SEEK_SET), 0);
  return file;
}

std::string ReadFromStart(const OwnedDescriptor& file) {
  EXPECT_EQ(::lseek(file.number(), 0, SEEK_SET), 0);
  return file.ReadAll();
}

ChildProcess::Start WithDescriptors(const std::string& program, const Start& start,
                                    const OwnedDescriptor& in, int out, int err) {
  return {program,
          start.arguments,
          start.environment,
          {"NO_COLOR", "TERM", "COLUMNS", "http_proxy", "https_proxy", "all_proxy", "HTTPS_PROXY",
           "ALL_PROXY", "no_proxy", "NO_PROXY", "STOWRA_URL_BASE", "STOWRA_HEADER",
           "STOWRA_MAX_TIME", "STOWRA_TIMEOUT", "STOWRA_CACERT", "STOWRA_RETRY"},
          {{in.number(), STDIN_FILENO}, {out, STDOUT_FILENO}, {err, STDERR_FILENO}}};
}

}  // namespace

Child::Child(const std::string& program, const Start& start)
    : output_(MakeFile("")),
      errors_(MakeFile("")),
      process_(WithDescriptors(program, start, MakeFile(start.input), output_.number(),
                               errors_.number())) {}

Outcome Child::Wait() {
  const int status = process_.Wait();
  return {status, ReadFromStart(output_), ReadFromStart(errors_)};
}

Outcome RunProgram(const std::string& program, const Start& start) {
  return Child(program, start).Wait();
}

Outcome RunOnTerminal(const std::string& program, const Start& start) {
  const OwnedDescriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
  EXPECT_EQ(::grantpt(master.number()), 0);
  EXPECT_EQ(::unlockpt(master.number()), 0);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the test has one thread
  OwnedDescriptor terminal(::open(::ptsname(master.number()), O_RDWR | O_NOCTTY));
  EXPECT_GE(terminal.number(), 0);
  ChildProcess process(
      WithDescriptors(program, start, MakeFile(start.input), terminal.number(), terminal.number()));
  terminal.Close();
  const std::string out = master.ReadAll();  // ends when no process has the terminal open
  return {process.Wait(), out, ""};
}

}  // namespace stowra_test
