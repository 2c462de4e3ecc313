// Documents whose parts are long, deep or many. Their cost grows with their length alone.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;

constexpr std::size_t kHuge = 100'000'000;

// Expects the text of the root element `a` to have that many units.
std::function<void(IXMLInput& reader)> HasTextOf(std::size_t length) {
  return [length](IXMLInput& reader) {
    ovrant_ustring text;
    ASSERT_TRUE(reader.GetElementText("a", text));
    EXPECT_EQ(text.length(), length);
  };
}

TEST(XmlHostileSizeTest, HugeText) {
  EXPECT_TRUE(OpenHostile("<a>" + std::string(kHuge, 'x') + "</a>", HasTextOf(kHuge)));
}

TEST(XmlHostileSizeTest, HugeTextOfManyLines) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("xxx\n", kHuge / 4) + "x</a>", HasTextOf(kHuge + 1)));
}

TEST(XmlHostileSizeTest, HugeTextOfLineEnds) {
  EXPECT_TRUE(
      OpenHostile("<a>x" + Repeated("\r\n", kHuge / 2) + "x</a>", HasTextOf(kHuge / 2 + 2)));
}

TEST(XmlHostileSizeTest, HugeWhiteSpace) {
  EXPECT_TRUE(OpenHostile("<a>" + std::string(kHuge, ' ') + "</a>", HasTextOf(0)));
}

TEST(XmlHostileSizeTest, HugeSection) {
  EXPECT_TRUE(
      OpenHostile("<a><![CDATA[" + std::string(kHuge, ']') + "x]]></a>", HasTextOf(kHuge + 1)));
}

TEST(XmlHostileSizeTest, HugeComment) {
  EXPECT_TRUE(OpenHostile("<a><!--" + std::string(kHuge, ' ') + "-->x</a>", HasTextOf(1)));
  EXPECT_FALSE(OpenHostile("<a><!--" + std::string(kHuge, ' ')));
}

TEST(XmlHostileSizeTest, HugeInstruction) {
  EXPECT_TRUE(OpenHostile("<a><?p " + std::string(kHuge, '?') + "?>x</a>", HasTextOf(1)));
}

TEST(XmlHostileSizeTest, HugeAttribute) {
  EXPECT_TRUE(OpenHostile("<a n='" + std::string(kHuge, 'x') + "'/>", [](IXMLInput& reader) {
    ovrant_ustring value;
    ASSERT_TRUE(reader.FindElement("a"));
    ASSERT_TRUE(reader.GetAttribute("n", value));
    EXPECT_EQ(value.length(), kHuge);
  }));
}

TEST(XmlHostileSizeTest, HugeNames) {
  const std::string name(kHuge / 2, 'x');
  EXPECT_TRUE(OpenHostile("<" + name + "></" + name + ">"));
  EXPECT_TRUE(OpenHostile("<a " + name + "=''/>"));
}

TEST(XmlHostileSizeTest, HugeSpaceInTags) {
  EXPECT_TRUE(OpenHostile("<a" + std::string(kHuge, ' ') + "></a" + std::string(kHuge, ' ') + ">"));
}

TEST(XmlHostileSizeTest, HugeSpaceAfterTheRoot) {
  EXPECT_TRUE(OpenHostile("<a/>" + std::string(kHuge, '\n')));
}

TEST(XmlHostileSizeTest, AMillionCharacterReferences) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("&#x41;", 1'000'000) + "</a>", HasTextOf(1'000'000)));
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("&amp;", 1'000'000) + "</a>", HasTextOf(1'000'000)));
  EXPECT_TRUE(OpenHostile("<a n='" + Repeated("&#65;", 1'000'000) + "'/>"));
  EXPECT_TRUE(OpenHostile("<a n='" + Repeated("&lt;", 1'000'000) + "'/>"));
}

TEST(XmlHostileSizeTest, ACharacterReferenceOfAMillionDigits) {
  EXPECT_TRUE(OpenHostile("<a>&#" + std::string(1'000'000, '0') + "65;</a>", HasTextOf(1)));
  EXPECT_FALSE(OpenHostile("<a>&#" + std::string(1'000'000, '6') + ";</a>"));
  EXPECT_FALSE(OpenHostile("<a>&#x" + std::string(1'000'000, 'F') + ";</a>"));
}

TEST(XmlHostileSizeTest, AMillionPiecesOfText) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("x<b/>", 1'000'000) + "</a>", HasTextOf(1'000'000)));
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("x<!---->", 1'000'000) + "</a>", HasTextOf(1'000'000)));
  EXPECT_TRUE(
      OpenHostile("<a>" + Repeated("<![CDATA[x]]>", 1'000'000) + "</a>", HasTextOf(1'000'000)));
}

TEST(XmlHostileSizeTest, AMillionLevels) {
  EXPECT_FALSE(OpenHostile(Repeated("<a>", 1'000'000) + Repeated("</a>", 1'000'000)));
  EXPECT_FALSE(OpenHostile(Repeated("<a>", 1'000'000)));
  EXPECT_FALSE(OpenHostile(Repeated("<a n='", 1'000'000)));
  EXPECT_FALSE(OpenHostile(Repeated("<", 10'000'000)));
}

TEST(XmlHostileSizeTest, DeepAndWide) {
  const std::string deep = Repeated("<b>", 250) + "x" + Repeated("</b>", 250);
  EXPECT_TRUE(OpenHostile("<a>" + Repeated(deep, 2'000) + "</a>", HasTextOf(2'000)));
}

TEST(XmlHostileSizeTest, TenMillionEmptyElements) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("<b/>", 10'000'000) + "</a>", HasTextOf(0)));
}

TEST(XmlHostileSizeTest, AMillionEndings) {
  EXPECT_FALSE(OpenHostile("<a>" + Repeated("</a>", 1'000'000)));
  EXPECT_FALSE(OpenHostile("<a>" + Repeated("<b></c>", 1'000'000)));
  EXPECT_FALSE(OpenHostile("<a>" + Repeated("]]>", 1'000'000)));
}

TEST(XmlHostileSizeTest, Utf16OfEveryKind) {
  std::string bytes = "\xFF\xFE";
  const auto add = [&bytes](const std::string& text) {
    for (const char c : text) bytes += {c, '\0'};
  };
  add("<a>");
  for (int i = 0; i < 10'000'000; ++i) bytes += {'\x3D', '\xD8', '\0', '\xDE'};
  add("</a>");
  EXPECT_TRUE(OpenHostile(bytes, HasTextOf(20'000'000)));
}

TEST(XmlHostileSizeTest, TextThatGrowsInUtf8) {
  const std::string declaration = "<?xml version='1.0' encoding='ISO-8859-1'?>";
  EXPECT_TRUE(OpenHostile(declaration + "<a>" + std::string(10'000'000, '\xE9') + "</a>",
                          HasTextOf(10'000'000)));
}

}  // namespace
}  // namespace stowra_test
