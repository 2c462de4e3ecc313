// SPDX-License-Identifier: MIT
// Shared by the tests of the program.

#ifndef TESTS_HOST_HOST_TEST_H_
#define TESTS_HOST_HOST_TEST_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/child.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

inline constexpr const char* kStowra = STOWRA_PROGRAM;

inline Outcome RunStowra(const std::vector<std::string>& arguments, const std::string& input = "") {
  Start start;
  start.arguments = arguments;
  start.input = input;
  return RunProgram(kStowra, start);
}

// Answers every request with status 200 and this JSON text.
inline RawServer::Handler Replies(const std::string& body) {
  return Always(Response(200, body, "Content-Type: application/json\r\n"));
}

// Runs each test with and without --async. It expects the same of both.
class InBothModes : public testing::TestWithParam<const char*> {
 protected:
  static Outcome RunInMode(const std::vector<std::string>& arguments,
                           const std::string& input = "") {
    std::vector<std::string> all = arguments;
    if (*GetParam() != '\0') all.emplace_back(GetParam());
    return RunStowra(all, input);
  }
};

inline std::string ModeName(const testing::TestParamInfo<const char*>& mode) {
  return *mode.param == '\0' ? "Waiting" : "Async";
}

// Instantiates a test suite for both modes.
#define IN_BOTH_MODES(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::Values("", "--async"), ModeName)

}  // namespace stowra_test

#endif  // TESTS_HOST_HOST_TEST_H_
