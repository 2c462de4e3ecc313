// What the tests of the program have in common.

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

// Gives every request this JSON text, with status 200.
inline RawServer::Handler Replies(const std::string& body) {
  return Always(Response(200, body, "Content-Type: application/json\r\n"));
}

// A test that runs once on the calling thread and once in the background; what it expects of the
// two is the same.
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

// Declares the modes of a test suite.
#define IN_BOTH_MODES(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::Values("", "--async"), ModeName)

}  // namespace stowra_test

#endif  // TESTS_HOST_HOST_TEST_H_
