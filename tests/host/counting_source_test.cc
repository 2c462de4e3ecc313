// SPDX-License-Identifier: MIT
#include "host/counting_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "common_stowraapi/platform/memory_source.h"

namespace stowra_test {
namespace {

using ovrant::internet::MemorySource;
using stowra::CountingSource;
using stowra::CountText;

// Reads all of `source` in pieces of this size.
std::string ReadAll(CountingSource& source, std::size_t piece) {
  std::string all;
  std::string bytes(piece, '\0');
  std::size_t count = 0;
  while (source.Read(reinterpret_cast<unsigned char*>(bytes.data()), piece, count) && count > 0) {
    all.append(bytes, 0, count);
  }
  return all;
}

TEST(CountTextTest, CountsEachPlace) {
  EXPECT_EQ(CountText("", "ab"), 0U);
  EXPECT_EQ(CountText("a", "ab"), 0U);
  EXPECT_EQ(CountText("abxabab", "ab"), 3U);
  EXPECT_EQ(CountText("aaaa", "aa"), 3U);
}

TEST(CountingSourceTest, CountsAcrossPieces) {
  for (const std::string text : {"a", "aa", "abcab"}) {
    for (const std::string& body : {std::string(), text, text + text,
                                    "xab" + text + "c" + text + "cab", std::string(20, 'a')}) {
      for (std::size_t piece = 1; piece < 12; ++piece) {
        MemorySource memory(body);
        CountingSource source(memory, text);
        EXPECT_EQ(ReadAll(source, piece), body);
        EXPECT_EQ(source.count(), CountText(body, text)) << text << " in " << body << ", " << piece;
      }
    }
  }
}

TEST(CountingSourceTest, BeginsAnew) {
  MemorySource memory("abab");
  CountingSource source(memory, "ab");
  EXPECT_EQ(source.Length(), 4U);
  ReadAll(source, 3);
  EXPECT_TRUE(source.Rewind());
  EXPECT_EQ(source.count(), 0U);
  EXPECT_EQ(ReadAll(source, 3), "abab");
  EXPECT_EQ(source.count(), 2U);
}

}  // namespace
}  // namespace stowra_test
