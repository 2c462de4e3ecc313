// SPDX-License-Identifier: MIT
#include "host/wrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace stowra {
namespace {

using testing::ElementsAre;

TEST(WrapTest, CountsTerminalColumns) {
  EXPECT_EQ(ColumnsOf(""), 0U);
  EXPECT_EQ(ColumnsOf("Zoë"), 3U);
  EXPECT_EQ(ColumnsOf("木の椅子"), 8U);
}

TEST(WrapTest, BreaksAtSpaces) {
  EXPECT_THAT(WrapText("a bc def", 8), ElementsAre("a bc def"));
  EXPECT_THAT(WrapText("a bc def", 7), ElementsAre("a bc", "def"));
  EXPECT_THAT(WrapText("a bc def", 3), ElementsAre("a", "bc", "def"));
  EXPECT_THAT(WrapText("", 3), ElementsAre(""));
}

TEST(WrapTest, BreaksWordsThatAreTooLong) {
  EXPECT_THAT(WrapText("abcdefgh", 3), ElementsAre("abc", "def", "gh"));
  EXPECT_THAT(WrapText("x abcdefgh y", 4), ElementsAre("x", "abcd", "efgh", "y"));
  EXPECT_THAT(WrapText("木の椅子", 5), ElementsAre("木の", "椅子"));
}

TEST(WrapTest, JoinsParagraphs) {
  EXPECT_EQ(JoinParagraphs("A:\n  b\n\nc\nd.\ne\n\nf\n"), "A:\n  b\n\nc d. e\n\nf\n");
}

TEST(WrapTest, WrapsHelpAtItsDescriptions) {
  EXPECT_EQ(WrapHelp("one two three\n\n  -x        one two three\n", 22, 12),
            "one two three\n\n  -x        one two\n            three\n");
  EXPECT_EQ(WrapHelp("  words that go on\n", 12, 12), "  words that\n  go on\n");
}

TEST(WrapTest, ContinuesExamplesWithBackslash) {
  EXPECT_EQ(WrapHelp("  stowra search 'a b' --all\n", 20, 12),
            "  stowra search \\\n    'a b' --all\n");
}

}  // namespace
}  // namespace stowra
