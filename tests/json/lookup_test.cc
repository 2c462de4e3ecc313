// SPDX-License-Identifier: MIT
// Look-ups that leave no handle in the document.

#include "common_stowraapi/json/lookup.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>
#include <string_view>

#include "tests/json/text.h"

namespace stowra_test {
namespace {

using ovrant::json::Lookup;

class LookupTest : public testing::Test {
 protected:
  LoadedDocument document{R"({"list":[1,"two"],"a":3,"a":4,"été":5,"":6})"};
  const Value root = Lookup::Root(document);
  const Value list = Lookup::Member(root, "list");
};

TEST_F(LookupTest, RootIsTheDocument) {
  EXPECT_TRUE(root.IsObject());
  EXPECT_EQ(root.Size(), 5U);
  ASSERT_FALSE(document.Load("x"));
  EXPECT_TRUE(Lookup::Root(document).IsNull());
}

TEST_F(LookupTest, MemberIsTheFirstOfThatName) {
  EXPECT_EQ(Lookup::Member(root, "a").GetInt(), 3);
  EXPECT_EQ(Lookup::Member(root, "\u00e9t\u00e9").GetInt(), 5);
  EXPECT_EQ(Lookup::Member(root, "").GetInt(), 6);
  EXPECT_EQ(list.Size(), 2U);
}

TEST_F(LookupTest, MemberAtCountsRepeatedNames) {
  EXPECT_TRUE(Lookup::MemberAt(root, 0).IsArray());
  EXPECT_EQ(Lookup::MemberAt(root, 2).GetInt(), 4);
  EXPECT_EQ(Lookup::MemberAt(root, 4).GetInt(), 6);
}

TEST_F(LookupTest, ElementIsTheOneAtItsIndex) {
  EXPECT_EQ(Lookup::Element(list, 0).GetInt(), 1);
  EXPECT_EQ(Lookup::Element(list, 1).GetString(), "two");
}

TEST_F(LookupTest, WhatIsNotThereReadsAsNull) {
  for (const Value& missing :
       {Lookup::Member(root, "b"), Lookup::Member(list, "a"), Lookup::Member(Value(), "a"),
        Lookup::MemberAt(root, 5), Lookup::MemberAt(list, 0), Lookup::MemberAt(Value(), 0),
        Lookup::Element(list, 2), Lookup::Element(root, 0), Lookup::Element(Value(), 0)}) {
    EXPECT_TRUE(missing.IsNull());
  }
  EXPECT_EQ(root.Size(), 5U);
}

TEST_F(LookupTest, LeavesNoHandleBehind) {
  Lookup::Element(list, 0);
  Lookup::MemberAt(root, 1);
  EXPECT_EQ(CountHandles(root), 0U);
  EXPECT_EQ(CountHandles(list), 0U);
  static_cast<void>(root["a"]);
  EXPECT_EQ(CountHandles(root), 1U);
}

// Cut to 32 bits, its length is that of the empty name. Its pages are not read.
TEST_F(LookupTest, NoMemberHasANameOf4Gibibytes) {
  constexpr std::size_t k4Gibibytes = std::size_t{1} << 32;
  void* const zeros =
      mmap(nullptr, k4Gibibytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(zeros, MAP_FAILED);
  const std::string_view name(static_cast<const char*>(zeros), k4Gibibytes);
  EXPECT_TRUE(Lookup::Member(root, name).IsNull());
  EXPECT_EQ(Lookup::Member(root, "").GetInt(), 6);
  munmap(zeros, k4Gibibytes);
}

}  // namespace
}  // namespace stowra_test
