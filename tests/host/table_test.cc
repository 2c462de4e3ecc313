// SPDX-License-Identifier: MIT
#include "host/table.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

constexpr auto kFirstRow = Table::Labels::kFirstRow;
constexpr auto kFirstColumn = Table::Labels::kFirstColumn;

using Rows = std::vector<std::vector<std::string>>;

std::string TextOf(Table::Labels labels, const Rows& rows, bool coloured = false,
                   std::size_t limit = kNoWidthLimit) {
  Table table(labels);
  for (const auto& row : rows) table.AddRow(row);
  return table.ToText(coloured, limit);
}

TEST(TableTest, AlignsColumnsWithoutTrailingSpaces) {
  EXPECT_EQ(TextOf(kFirstRow, {{"a", "long", "c"}, {"wider", "b", "much longer"}}),
            "a      long  c\nwider  b     much longer\n");
}

TEST(TableTest, CountsWideCharacterAsTwoColumns) {
  EXPECT_EQ(TextOf(kFirstRow, {{"屋根", "x"}, {"roof", "y"}, {"é", "z"}}),
            "屋根  x\nroof  y\né     z\n");
}

TEST(TableTest, AcceptsRowsOfDifferentLength) {
  EXPECT_EQ(TextOf(kFirstColumn, {{"a"}, {"b", "c", "d"}}), "a\nb  c  d\n");
}

TEST(TableTest, LimitsPaddingBesideWideCell) {
  const std::string wide(70, 'x');
  EXPECT_EQ(TextOf(kFirstRow, {{wide, "1"}, {"y", "2"}}),
            wide + "  1\ny" + std::string(59 + 2, ' ') + "2\n");
}

TEST(TableTest, MakesLabelsBoldWithoutMovingCells) {
  const Rows rows = {{"a", "b"}, {"cc", "d"}};
  EXPECT_EQ(TextOf(kFirstColumn, rows, true), "\x1B[1ma\x1B[0m   b\n\x1B[1mcc\x1B[0m  d\n");
  EXPECT_EQ(TextOf(kFirstRow, rows, true), "\x1B[1ma\x1B[0m   \x1B[1mb\x1B[0m\ncc  d\n");
}

TEST(TableTest, WrapsCellsToTheWidth) {
  const Rows rows = {{"title", "url"}, {"Oak chair with arms", "http://host/a/long/path"}};
  EXPECT_EQ(TextOf(kFirstRow, rows, false, 30),
            "title           url\n"
            "Oak chair with  http://host/a/\n"
            "arms            long/path\n");
  EXPECT_EQ(TextOf(kFirstRow, rows, false, 44),
            "title                url\n"
            "Oak chair with arms  http://host/a/long/path\n");
}

TEST(TableTest, KeepsColumnsOfEightCharacters) {
  EXPECT_EQ(TextOf(kFirstColumn, {{"a", "0123456789ab", "0123456789ab"}}, false, 5),
            "a  01234567  01234567\n   89ab      89ab\n");
}

}  // namespace
}  // namespace stowra
