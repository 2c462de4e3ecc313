// SPDX-License-Identifier: MIT
#include "host/printable.h"

#include <gtest/gtest.h>

#include "common_stowraapi/json/document.h"
#include "host/json_values.h"

namespace stowra {
namespace {

using ovrant::json::Document;

TEST(PrintableTest, KeepsOrdinaryText) {
  for (const char* text :
       {"", "chair", "Zoë 木の椅子 مرحبا 🪑", "\u2764\uFE0F", "a\\u001Bb"}) {
    EXPECT_EQ(Printable(text), text);
  }
}

TEST(PrintableTest, EscapesControls) {
  EXPECT_EQ(Printable("a\x1B[2J\x7F\r\n\tb"), "a\\u001B[2J\\u007F\\u000D\\u000A\\u0009b");
  EXPECT_EQ(Printable("\u0085\u009B31m"), "\\u0085\\u009B31m");
  EXPECT_EQ(Printable(std::string_view("a\0b", 3)), "a\\u0000b");
  EXPECT_EQ(Printable("\u2028\u2029"), "\\u2028\\u2029");
}

TEST(PrintableTest, EscapesCharactersThatTurnTheDirection) {
  EXPECT_EQ(Printable("chair\u202Ezmk.exe"), "chair\\u202Ezmk.exe");
  EXPECT_EQ(Printable("\u061C\u200E\u200F\u2066\u2069"), "\\u061C\\u200E\\u200F\\u2066\\u2069");
}

TEST(PrintableTest, EscapesCharactersWithoutWidth) {
  EXPECT_EQ(Printable("a\u200Bb\u200D\u2060\uFEFF\u00AD"), "a\\u200Bb\\u200D\\u2060\\uFEFF\\u00AD");
  EXPECT_EQ(Printable("x\U000E0041y\U0001F600"), "x\\uDB40\\uDC41y\U0001F600");
}

TEST(PrintableTest, ReplacesIllFormedBytes) {
  EXPECT_EQ(Printable("a\xFF"
                      "b\x9B"),
            "a\uFFFDb\uFFFD");
}

TEST(PrintableTest, KeepsTheMeaningOfJson) {
  const ovrant::utils::ovrant_ustring text("\x1B[2J\x7F\u009B\u202E\u200B\U000E0041\"\\");
  Document written;
  written.AddMember("text", MakeText(written, text));
  const std::string line = ToLine(written);
  EXPECT_EQ(line, "{\"text\":\"\\u001B[2J\\u007F\\u009B\\u202E\\u200B\\uDB40\\uDC41\\\"\\\\\"}\n");
  Document read;
  ASSERT_TRUE(read.Load(line.c_str()));
  EXPECT_EQ(read["text"].GetString(), text);
}

}  // namespace
}  // namespace stowra
