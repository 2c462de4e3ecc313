// SPDX-License-Identifier: MIT
// Texts and names that need more than 32 bits to count.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/lookup.h"
#include "common_stowraapi/json/tree_reader.h"

namespace stowra_test {
namespace {

constexpr std::size_t k4Gibibytes = std::size_t{1} << 32;

bool HasMemory(std::size_t bytes) {
  return static_cast<std::size_t>(sysconf(_SC_AVPHYS_PAGES)) *
             static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) >
         bytes;
}

// Reads "[]" behind so much white space that the text has `size` bytes.
bool ReadsTextOf(std::size_t size) {
  std::string text;
  text.reserve(size + 64);  // the reader appends a few bytes
  text.assign(size - 2, ' ');
  text += "[]";
  ovrant::json::ParsedText tree;
  return ovrant::json::ReadTree(std::move(text), 1, tree);
}

TEST(LargeTextTest, MayHaveOneByteLessThan4Gibibytes) {
  if (!HasMemory(k4Gibibytes + k4Gibibytes / 4)) GTEST_SKIP() << "not enough memory";
  EXPECT_TRUE(ReadsTextOf(k4Gibibytes - 1));
  EXPECT_FALSE(ReadsTextOf(k4Gibibytes));
}

// Cut to 32 bits, its length is that of the empty name. Its pages are not read.
TEST(LargeTextTest, NoMemberHasANameOf4Gibibytes) {
  ovrant::json::Document document;
  ASSERT_TRUE(document.Load(R"({"":1})"));
  void* const zeros =
      mmap(nullptr, k4Gibibytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(zeros, MAP_FAILED);
  const std::string_view name(static_cast<const char*>(zeros), k4Gibibytes);
  const ovrant::json::Value root = ovrant::json::Lookup::Root(document);
  EXPECT_TRUE(ovrant::json::Lookup::Member(root, name).IsNull());
  EXPECT_EQ(ovrant::json::Lookup::Member(root, "").GetInt(), 1);
  munmap(zeros, k4Gibibytes);
}

}  // namespace
}  // namespace stowra_test
