// GetElementText.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

TEST(XmlElementTextTest, IsThatOfTheFirstChildOfTheName) {
  XmlDocument document("<r>0<x>x</x><t>1</t><t>2</t></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  EXPECT_EQ(document.Text("t"), "1");
  EXPECT_EQ(document.Text("x"), "x");
}

TEST(XmlElementTextTest, ADescendantIsNoChild) {
  XmlDocument document("<r><x><t>1</t></x></r>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Text("x"));
  ASSERT_TRUE(document.Find("r"));
  EXPECT_FALSE(document.Text("t"));
  EXPECT_FALSE(document.Text("r"));
}

TEST(XmlElementTextTest, OfTheRootIsAskedForAtTheDocument) {
  EXPECT_EQ(RootText("<a>text</a>"), "text");
}

TEST(XmlElementTextTest, AnEmptyElementIsPresent) {
  EXPECT_EQ(RootText("<a/>"), "");
  EXPECT_EQ(RootText("<a></a>"), "");
  EXPECT_EQ(RootText("<a> \t\r\n </a>"), "");
  EXPECT_EQ(RootText("<a><!-- text --><?text?><b/><![CDATA[]]></a>"), "");
  EXPECT_EQ(RootText("<a>&#32;&#9;&#10;&#13;</a>"), "");
}

TEST(XmlElementTextTest, LosesTheWhiteSpaceAroundItOnly) {
  EXPECT_EQ(RootText("<a> \t\n x \t\n y \n</a>"), "x \t\n y");
  EXPECT_EQ(RootText("<a> <b> x </b> <c> </c></a>"), "x");
  EXPECT_EQ(RootText("<a><![CDATA[ x ]]></a>"), "x");
  EXPECT_EQ(RootText("<a>&#x20;&#x9;x&#xA;&#xD;</a>"), "x");
}

TEST(XmlElementTextTest, OtherBlanksAreNoWhiteSpace) {
  // U+00A0, U+0085, U+2003, U+FEFF, U+200B, U+3000, U+2028.
  for (const std::string blank : {"\xC2\xA0", "\xC2\x85", "\xE2\x80\x83", "\xEF\xBB\xBF",
                                  "\xE2\x80\x8B", "\xE3\x80\x80", "\xE2\x80\xA8"}) {
    EXPECT_EQ(RootText("<a>" + blank + "</a>"), blank);
    EXPECT_EQ(RootText("<a> " + blank + "x" + blank + " </a>"), blank + "x" + blank);
  }
}

TEST(XmlElementTextTest, JoinsWhatDescendantsHold) {
  EXPECT_EQ(RootText("<a>1<b>2<c>3</c>4</b>5<b/>6<b>7</b></a>"), "1234567");
  EXPECT_EQ(RootText("<a><b><b><b>x</b></b></b></a>"), "x");
  EXPECT_EQ(RootText("<a>x<b n='attribute'/>y</a>"), "xy");
}

TEST(XmlElementTextTest, EndsWithItsElement) {
  XmlDocument document("<r>0<a>1</a>2<b>3</b>4<c/>5</r>");
  ASSERT_TRUE(document.is_open());
  EXPECT_EQ(document.Text("r"), "012345");
  ASSERT_TRUE(document.Find("r"));
  EXPECT_EQ(document.Text("a"), "1");
  EXPECT_EQ(document.Text("b"), "3");
  EXPECT_EQ(document.Text("c"), "");
}

TEST(XmlElementTextTest, WordsOfNestedElementsInTheirPlaces) {
  XmlDocument document("<r><t> A <i>title <b>of</b></i> <u/>words </t><t>B</t></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  EXPECT_EQ(document.Text("t"), "A title of words");
  ASSERT_TRUE(document.Find("t"));
  EXPECT_EQ(document.Text("i"), "title of");
  ASSERT_TRUE(document.Find("i"));
  EXPECT_EQ(document.Text("b"), "of");
}

TEST(XmlElementTextTest, CharacterDataSectionsAreText) {
  EXPECT_EQ(RootText("<a>1<![CDATA[<b>&amp;</b>]]>2<![CDATA[]]>3<![CDATA[]]]]><![CDATA[>]]></a>"),
            "1<b>&amp;</b>23]]>");
}

TEST(XmlElementTextTest, CommentsAndInstructionsAreNone) {
  EXPECT_EQ(RootText("<a>x<!-- c -->y<?pi z?>z</a>"), "xyz");
  EXPECT_EQ(RootText("<!--1--><?p 2?><a>x</a><!--3--><?p 4?>"), "x");
}

TEST(XmlElementTextTest, ReferencesAreDecoded) {
  EXPECT_EQ(RootText("<a>&lt;b&gt;&amp;amp;&quot;&apos;</a>"), "<b>&amp;\"'");
  EXPECT_EQ(RootText("<a>&#65;&#x42;&#x63;&#8364;&#x10FFFF;&#128512;</a>"),
            "ABc\xE2\x82\xAC\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80");
}

TEST(XmlElementTextTest, UnknownEntitiesAndBadReferencesAreIllFormed) {
  for (const char* const reference :
       {"&e;", "&;", "&", "&lt", "&LT;", "&nbsp;", "&#;", "&#x;", "&#0;", "&#1;", "&#xD800;",
        "&#xFFFE;", "&#x110000;", "&#99999999999999999999;", "&#-1;", "& lt;", "&#X41;"}) {
    EXPECT_FALSE(Opens(std::string("<a>") + reference + "</a>")) << reference;
    EXPECT_FALSE(Opens(std::string("<a n='") + reference + "'/>")) << reference;
  }
}

TEST(XmlElementTextTest, LineEndsBecomeLineFeeds) {
  EXPECT_EQ(RootText("<a>x\r\ny\rz\n.\r\r\n.</a>"), "x\ny\nz\n.\n\n.");
  EXPECT_EQ(RootText("<a><![CDATA[x\r\ny\rz]]>&#13;.</a>"), "x\ny\nz\r.");
}

TEST(XmlElementTextTest, ReplacesTheWholeValue) {
  XmlDocument document("<a n='2'>1</a>");
  ASSERT_TRUE(document.is_open());
  ovrant::utils::ovrant_ustring value = "a longer value from before";
  EXPECT_TRUE(document.reader().GetElementText("a", value));
  EXPECT_EQ(value, "1");
  ASSERT_TRUE(document.Find("a"));
  value = "a longer value from before";
  EXPECT_TRUE(document.reader().GetAttribute("n", value));
  EXPECT_EQ(value, "2");
}

TEST(XmlElementTextTest, TheValueMayBeTheNameItself) {
  XmlDocument document("<a a='attribute'>text<a>inner</a></a>");
  ASSERT_TRUE(document.is_open());
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

}  // namespace
}  // namespace stowra_test
