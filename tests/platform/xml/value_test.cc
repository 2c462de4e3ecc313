// SPDX-License-Identifier: MIT
// GetElementText, GetElementInt and GetElementBool.

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <utility>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

TEST(XmlElementTextTest, IsTheTextOfTheElementWithoutWhiteSpaceAroundIt) {
  const std::pair<const char*, const char*> documents[] = {
      {"<a>text</a>", "text"},
      // An empty element is present.
      {"<a/>", ""},
      {"<a></a>", ""},
      {"<a> \t\r\n </a>", ""},
      {"<a><!-- text --><?text?><b/><![CDATA[]]></a>", ""},
      {"<a>&#32;&#9;&#10;&#13;</a>", ""},
      // White space.
      {"<a> \t\n x \t\n y \n</a>", "x \t\n y"},
      {"<a> <b> x </b> <c> </c></a>", "x"},
      {"<a><![CDATA[ x ]]></a>", "x"},
      {"<a>&#x20;&#x9;x&#xA;&#xD;</a>", "x"},
      // Descendants.
      {"<a>1<b>2<c>3</c>4</b>5<b/>6<b>7</b></a>", "1234567"},
      {"<a><b><b><b>x</b></b></b></a>", "x"},
      {"<a>x<b n='attribute'/>y</a>", "xy"},
      // Sections, comments and instructions.
      {"<a>1<![CDATA[<b>&amp;</b>]]>2<![CDATA[]]>3<![CDATA[]]]]><![CDATA[>]]></a>",
       "1<b>&amp;</b>23]]>"},
      {"<a>x<!-- c -->y<?pi z?>z</a>", "xyz"},
      {"<!--1--><?p 2?><a>x</a><!--3--><?p 4?>", "x"},
      // References.
      {"<a>&lt;b&gt;&amp;amp;&quot;&apos;</a>", "<b>&amp;\"'"},
      {"<a>&#65;&#x42;&#x63;&#8364;&#x10FFFF;&#128512;</a>",
       "ABc\xE2\x82\xAC\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80"},
      // Line ends.
      {"<a>x\r\ny\rz\n.\r\r\n.</a>", "x\ny\nz\n.\n\n."},
      {"<a><![CDATA[x\r\ny\rz]]>&#13;.</a>", "x\ny\nz\r."}};
  for (const auto& [bytes, text] : documents) EXPECT_EQ(RootText(bytes), text) << bytes;
}

TEST(XmlElementTextTest, OtherBlanksAreNoWhiteSpace) {
  // U+00A0, U+0085, U+2003, U+FEFF, U+200B, U+3000, U+2028.
  for (const std::string blank : {"\xC2\xA0", "\xC2\x85", "\xE2\x80\x83", "\xEF\xBB\xBF",
                                  "\xE2\x80\x8B", "\xE3\x80\x80", "\xE2\x80\xA8"}) {
    EXPECT_EQ(RootText("<a>" + blank + "</a>"), blank);
    EXPECT_EQ(RootText("<a> " + blank + "x" + blank + " </a>"), blank + "x" + blank);
  }
}

TEST(XmlElementTextTest, UnknownEntitiesAndBadReferencesAreIllFormed) {
  for (const std::string reference :
       {"&e;", "&;", "&", "&lt", "&LT;", "&nbsp;", "&#;", "&#x;", "&#0;", "&#1;", "&#xD800;",
        "&#xFFFE;", "&#x110000;", "&#99999999999999999999;", "&#-1;", "& lt;", "&#X41;"}) {
    EXPECT_FALSE(Opens("<a>" + reference + "</a>")) << reference;
    EXPECT_FALSE(Opens("<a n='" + reference + "'/>")) << reference;
  }
}

TEST(XmlElementTextTest, ReplacesTheWholeValue) {
  OpenDocument document("<a n='2'>1</a>");
  ovrant::utils::ovrant_ustring value = "a longer value from before";
  EXPECT_TRUE(document.reader().GetElementText("a", value));
  EXPECT_EQ(value, "1");
  ASSERT_TRUE(document.Find("a"));
  value = "a longer value from before";
  EXPECT_TRUE(document.reader().GetAttribute("n", value));
  EXPECT_EQ(value, "2");
}

TEST(XmlElementTextTest, TheValueMayBeTheNameItself) {
  OpenDocument document("<a a='attribute'>text<a>inner</a></a>");
  ovrant::utils::ovrant_ustring name = "a";
  EXPECT_TRUE(document.reader().GetElementText(name, name));
  EXPECT_EQ(name, "textinner");
  EXPECT_FALSE(document.reader().GetElementText(name, name));
  EXPECT_EQ(name, "textinner");
  ASSERT_TRUE(document.Find("a"));
  name = "a";
  EXPECT_TRUE(document.reader().GetAttribute(name, name));
  EXPECT_EQ(name, "attribute");
}

// Asks for the first of two values. The other one would be read without failure.
template <typename Value>
std::optional<Value> FirstOf(const std::string& text,
                             std::optional<Value> (XmlDocument::*get)(std::string_view)) {
  OpenDocument document("<a><n>" + text + "</n><n>1</n></a>", "a");
  return (document.*get)("n");
}

TEST(XmlElementIntTest, ReadsDecimalNumbersOf32Bits) {
  const std::pair<std::string, int> numbers[] = {
      {"0", 0},
      {"7", 7},
      {"1234567890", 1234567890},
      {"-5", -5},
      {"+5", 5},
      {"-0", 0},
      {"+0", 0},
      {"2147483647", INT_MAX},
      {"+2147483647", INT_MAX},
      {"-2147483647", -INT_MAX},
      {"-2147483648", INT_MIN},
      {"007", 7},
      {"-" + std::string(100, '0') + "2147483648", INT_MIN},
      {std::string(100, '0'), 0},
      {" \t\r\n-42 \t\r\n", -42},
      {"&#32;&#13;42&#10;", 42},
      {"1<!-- c -->2<?p?><![CDATA[3]]>&#52;", 1234},
      {"1<b> </b>", 1},
      {"1<b>2</b>3", 123},
      {"<b>-</b>1", -1}};
  for (const auto& [text, number] : numbers) {
    EXPECT_EQ(FirstOf(text, &XmlDocument::Int), number) << text;
  }
}

TEST(XmlElementIntTest, AnyOtherTextIsAbsent) {
  for (const std::string& text :
       Split("--5|++5|+-5|-+5|- 5|+ 5|-|+|5-|5+|2147483648|-2147483649|2147483650|-2147483650|"
             "4294967295|4294967296|4294967297|9999999999|-9999999999|9223372036854775807|"
             "9223372036854775808|18446744073709551616|18446744073709551617|"
             "-18446744073709551615|4 2|\u00A042|| |x|1x|x1|1.0|1.|1,000|1e3|0x10|1_000|true|"
             "NaN|\xD9\xA3|\xEF\xBC\x91|1&#xA0;|\u22125|1<b>x</b>")) {
    EXPECT_EQ(FirstOf(text, &XmlDocument::Int), std::nullopt) << text;
  }
  EXPECT_EQ(FirstOf(std::string(1000, '9'), &XmlDocument::Int), std::nullopt);
}

TEST(XmlElementBoolTest, ReadsFourTexts) {
  for (const std::string& text : Split("true|1| \t\r\n true \n|tr<!-- c --><![CDATA[ue]]>")) {
    EXPECT_EQ(FirstOf(text, &XmlDocument::Bool), true) << text;
  }
  for (const std::string& text : Split("false|0|\n0\n|<b>fal</b>s<c>e</c>")) {
    EXPECT_EQ(FirstOf(text, &XmlDocument::Bool), false) << text;
  }
}

TEST(XmlElementBoolTest, AnyOtherTextIsAbsent) {
  for (const std::string& text :
       Split("| |TRUE|True|FALSE|t|f|yes|no|on|2|-1|+1|01|00|10|1.0|tru|truee|true false|0x1|"
             "\xEF\xBC\x91|tr ue|1<b>0</b>")) {
    EXPECT_EQ(FirstOf(text, &XmlDocument::Bool), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace stowra_test
