// SPDX-License-Identifier: MIT
// The boundary and the headers of an upload.

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/platform/random.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::multipartupload::CreateHeaderDictionary;
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

using Headers = std::vector<std::pair<std::string, std::string>>;

Headers HeadersFor(const std::string& boundary, unsigned long length) {
  Headers headers;
  for (const auto& [name, value] : CreateHeaderDictionary(boundary, length)) {
    headers.emplace_back(name.utf8(), value.utf8());
  }
  return headers;
}

TEST(MultipartHeaderTest, HasThreeHeadersInTheMapsOrder) {
  EXPECT_EQ(HeadersFor("BrevixClient0385119264730052", 617),
            (Headers{{"Content-Length", "617"},
                     {"Content-Type", "multipart/form-data; boundary=BrevixClient0385119264730052"},
                     {"Proxy-Connection", "keep-alive"}}));
}

TEST(MultipartHeaderTest, LengthIsASignedNumberOfTheLowBits) {
  const std::pair<unsigned long, const char*> lengths[] = {{0, "0"},
                                                           {2147483647UL, "2147483647"},
                                                           {2147483648UL, "-2147483648"},
                                                           {3000000000UL, "-1294967296"},
                                                           {4294967295UL, "-1"},
                                                           {4294967296UL, "0"},
                                                           {4294967301UL, "5"},
                                                           {~0UL, "-1"}};
  for (const auto& [length, text] : lengths) EXPECT_EQ(HeadersFor("B", length)[0].second, text);
}

TEST(MultipartHeaderTest, ABoundaryIsWrittenAsItIs) {
  for (const std::string& boundary :
       {std::string(), std::string("a b\"\xC3\xA9"), std::string("a\0b", 3)}) {
    EXPECT_EQ(HeadersFor(boundary, 1)[1].second, "multipart/form-data; boundary=" + boundary);
  }
}

}  // namespace
}  // namespace stowra_test
