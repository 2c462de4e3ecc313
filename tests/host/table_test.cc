// SPDX-License-Identifier: MIT
#include "host/table.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

TEST(TableTest, AlignsColumnsWithoutTrailingSpaces) {
  Table table(Table::Labels::kFirstRow);
  table.AddRow({"a", "long", "c"});
  table.AddRow({"wider", "b", "much longer"});
  EXPECT_EQ(table.ToText(false, kNoWidthLimit), "a      long  c\nwider  b     much longer\n");
}

TEST(TableTest, CountsWideCharacterAsTwoColumns) {
  Table table(Table::Labels::kFirstRow);
  table.AddRow({"屋根", "x"});
  table.AddRow({"roof", "y"});
  table.AddRow({"é", "z"});
  EXPECT_EQ(table.ToText(false, kNoWidthLimit), "屋根  x\nroof  y\né     z\n");
}

TEST(TableTest, AcceptsRowsOfDifferentLength) {
  Table table(Table::Labels::kFirstColumn);
  table.AddRow({"a"});
  table.AddRow({"b", "c", "d"});
  EXPECT_EQ(table.ToText(false, kNoWidthLimit), "a\nb  c  d\n");
}

TEST(TableTest, LimitsPaddingBesideWideCell) {
  Table table(Table::Labels::kFirstRow);
  table.AddRow({std::string(70, 'x'), "1"});
  table.AddRow({"y", "2"});
  EXPECT_EQ(table.ToText(false, kNoWidthLimit),
            std::string(70, 'x') + "  1\ny" + std::string(59 + 2, ' ') + "2\n");
}

TEST(TableTest, MakesLabelsBoldWithoutMovingCells) {
  Table rows(Table::Labels::kFirstColumn);
  rows.AddRow({"a", "b"});
  rows.AddRow({"cc", "d"});
  EXPECT_EQ(rows.ToText(true, kNoWidthLimit), "\x1B[1ma\x1B[0m   b\n\x1B[1mcc\x1B[0m  d\n");
  Table columns(Table::Labels::kFirstRow);
  columns.AddRow({"a", "b"});
  columns.AddRow({"cc", "d"});
  EXPECT_EQ(columns.ToText(true, kNoWidthLimit), "\x1B[1ma\x1B[0m   \x1B[1mb\x1B[0m\ncc  d\n");
}

TEST(TableTest, WrapsCellsToTheWidth) {
  Table table(Table::Labels::kFirstRow);
  table.AddRow({"title", "url"});
  table.AddRow({"Oak chair with arms", "http://host/a/long/path"});
  EXPECT_EQ(table.ToText(false, 30),
            "title           url\n"
            "Oak chair with  http://host/a/\n"
            "arms            long/path\n");
  EXPECT_EQ(table.ToText(false, 44),
            "title                url\n"
            "Oak chair with arms  http://host/a/long/path\n");
}

TEST(TableTest, KeepsColumnsOfEightCharacters) {
  Table table(Table::Labels::kFirstColumn);
  table.AddRow({"a", "0123456789ab", "0123456789ab"});
  EXPECT_EQ(table.ToText(false, 5), "a  01234567  01234567\n   89ab      89ab\n");
}

}  // namespace
}  // namespace stowra
