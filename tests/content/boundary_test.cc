// SPDX-License-Identifier: MIT
// The boundary of an upload's body.

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/platform/random.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::multipartupload::GetBoundaryString;

// Runs `work` within one second of the clock and returns that second. Runs it again if the second
// ended meanwhile.
template <typename Work>
std::time_t WithinOneSecond(const Work& work) {
  for (;;) {
    const std::time_t before = std::time(nullptr);
    work();
    if (std::time(nullptr) == before) return before;
  }
}

TEST(BoundaryTest, IsAPrefixAndSixteenDigits) {
  const std::string boundary = GetBoundaryString();
  EXPECT_EQ(boundary.size(), 28U);
  EXPECT_EQ(boundary.substr(0, 12), "BrevixClient");
  EXPECT_EQ(boundary.find_first_not_of("0123456789", 12), std::string::npos);
}

TEST(BoundaryTest, TwoOfOneSecondAreEqual) {
  std::string first;
  std::string second;
  WithinOneSecond([&] {
    first = GetBoundaryString();
    Random::GetValue(0, 9);
    second = GetBoundaryString();
  });
  EXPECT_EQ(first, second);
}

TEST(BoundaryTest, DigitsAreThoseOfTheSecond) {
  std::string boundary;
  const std::time_t second = WithinOneSecond([&] { boundary = GetBoundaryString(); });
  Random::SetSeed(static_cast<unsigned int>(second));
  std::string expected = "BrevixClient";
  for (int i = 0; i < 16; ++i) expected += std::to_string(Random::GetValue(0, 9));
  EXPECT_EQ(boundary, expected);
}

// The shared generator continues after the boundary's draws.
TEST(BoundaryTest, ReseedsTheSharedGenerator) {
  int next = 0;
  const std::time_t second = WithinOneSecond([&] {
    Random::SetSeed(1);
    GetBoundaryString();
    next = Random::GetValue(0, 1000000);
  });
  Random::SetSeed(static_cast<unsigned int>(second));
  for (int i = 0; i < 16; ++i) Random::GetValue(0, 9);
  EXPECT_EQ(next, Random::GetValue(0, 1000000));
}

}  // namespace
}  // namespace stowra_test
