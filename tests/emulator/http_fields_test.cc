// SPDX-License-Identifier: MIT
#include "emulator/http_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace stowra_emulator {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(HttpFieldsTest, ReadsFieldsInOrder) {
  EXPECT_THAT(
      ParseFields("GET /a:b HTTP/1.1\r\nB: 1\r\na:2 \r\nno colon\r\nB:\t \r\nC: x: y\r\n\r\n"),
      ElementsAre(Pair("B", "1"), Pair("a", "2"), Pair("B", ""), Pair("C", "x: y")));
  EXPECT_THAT(ParseFields("GET / HTTP/1.1\r\n\r\n"), ElementsAre());
  EXPECT_THAT(ParseFields(""), ElementsAre());
}

TEST(HttpFieldsTest, FindsFieldWhateverItsCase) {
  const HttpFields fields = {{"content-TYPE", "a"}, {"Content-Type", "b"}};
  EXPECT_EQ(FieldValue(fields, "Content-Type"), "a");
  EXPECT_EQ(FieldValue(fields, "Content"), "");
}

TEST(HttpFieldsTest, HidesFieldWhateverItsCase) {
  std::string head = "GET /range: HTTP/1.1\r\nrange: bytes=0-1\r\nX-Range: 1\r\nRANGE: x\r\n\r\n";
  HideField(head, "Range");
  EXPECT_EQ(head,
            "GET /range: HTTP/1.1\r\nEmulator-range: bytes=0-1\r\nX-Range: 1\r\n"
            "Emulator-RANGE: x\r\n\r\n");
}

}  // namespace
}  // namespace stowra_emulator
