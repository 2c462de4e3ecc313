// SPDX-License-Identifier: MIT
// A document means the same wherever its parts lie. The parser converts long texts in pieces.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

constexpr std::size_t kBoundaries[] = {1024, 4096, 8192, 16'384, 32'768, 65'536, 131'072};

std::string Utf16Of(const std::string& utf8) { return Utf16(UnitsOf(Text(utf8))); }

// A document in which `part` follows so much text that it begins about `before` bytes before the
// boundary.
std::string WithPartAt(std::size_t boundary, std::size_t before, const std::string& part) {
  return "<a><t>" + std::string(boundary - before, '.') + "</t>" + part + "</a>";
}

void ExpectPart(const std::string& bytes) {
  OpenDocument document(bytes, "a");
  EXPECT_EQ(document.Text("b"), "x\xC3\xA9\xF0\x9F\x98\x80\n<[&]>A");
  ASSERT_TRUE(document.Find("b"));
  EXPECT_EQ(document.Attribute("n\xC3\xA9"), "\xF0\x9F\x98\x80&");
  EXPECT_EQ(document.Text("urn:p:c"), "A");
}

TEST(XmlPieceTest, EveryKindOfMarkupAcrossEveryBoundary) {
  const std::string part =
      "<b n\xC3\xA9='\xF0\x9F\x98\x80&amp;'>x\xC3\xA9\xF0\x9F\x98\x80\r\n&lt;<![CDATA[[&]]]>&gt;"
      "<!-- c --><?p i?><p:c xmlns:p='urn:p'>&#65;</p:c></b>";
  for (const std::size_t boundary : kBoundaries) {
    for (std::size_t before = 0; before < part.size() + 20; ++before) {
      SCOPED_TRACE(std::to_string(boundary) + " - " + std::to_string(before));
      ExpectPart(WithPartAt(boundary, before, part));
      ExpectPart(Utf16Of(WithPartAt(boundary / 2, before, part)));
      if (HasFailure()) return;
    }
  }
}

TEST(XmlPieceTest, IllFormedBytesAcrossEveryBoundary) {
  for (const std::size_t boundary : kBoundaries) {
    for (std::size_t before = 0; before < 24; ++before) {
      SCOPED_TRACE(std::to_string(boundary) + " - " + std::to_string(before));
      EXPECT_TRUE(Opens(WithPartAt(boundary, before, "\xF0\x9F\x98\x80")));
      EXPECT_FALSE(Opens(WithPartAt(boundary, before, "\xF0\x9F\x98")));
      EXPECT_FALSE(Opens(WithPartAt(boundary, before, "\xED\xA0\x80")));
      EXPECT_FALSE(Opens(WithPartAt(boundary, before, "]]>")));
      std::string utf16 = Utf16Of(WithPartAt(boundary / 2, before, "\xF0\x9F\x98\x80"));
      EXPECT_TRUE(Opens(utf16));
      utf16.replace(utf16.find("\x3D\xD8"), 4, std::string("\x3D\xD8.\0", 4));
      EXPECT_FALSE(Opens(utf16));
      utf16.replace(utf16.find("\x3D\xD8"), 4, std::string(".\0\0\xDE", 4));
      EXPECT_FALSE(Opens(utf16));
    }
  }
}

TEST(XmlPieceTest, EndsAtEveryBoundary) {
  for (const std::size_t boundary : kBoundaries) {
    for (std::size_t before = 0; before < 24; ++before) {
      const std::string bytes = WithPartAt(boundary, before, "");
      EXPECT_TRUE(Opens(bytes));
      EXPECT_FALSE(Opens(bytes.substr(0, bytes.size() - 1)));
      EXPECT_FALSE(Opens(bytes + "x"));
      EXPECT_FALSE(Opens(bytes + '\0'));
      EXPECT_TRUE(Opens(bytes + "\n"));
    }
  }
}

}  // namespace
}  // namespace stowra_test
