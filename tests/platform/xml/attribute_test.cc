// GetAttribute.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

// The attribute `name` of the root element `a`.
std::optional<std::string> RootAttribute(const std::string& bytes, const std::string& name) {
  XmlDocument document(bytes);
  EXPECT_TRUE(document.is_open()) << bytes;
  if (!document.is_open() || !document.Find("a")) return std::nullopt;
  return document.Attribute(name);
}

TEST(XmlAttributeTest, GivesEachByItsName) {
  XmlDocument document("<a one='1' two=\"2\" three='' four=' '><b one='5'/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  EXPECT_EQ(document.Attribute("two"), "2");
  EXPECT_EQ(document.Attribute("one"), "1");
  EXPECT_EQ(document.Attribute("three"), "");
  EXPECT_EQ(document.Attribute("four"), " ");
  for (const char* const absent : {"five", "One", "on", "ones", "", ":one", "a", "b"}) {
    EXPECT_FALSE(document.Attribute(absent)) << absent;
  }
  ASSERT_TRUE(document.Find("b"));
  EXPECT_EQ(document.Attribute("one"), "5");
  EXPECT_FALSE(document.Attribute("two"));
}

TEST(XmlAttributeTest, IsThatOfTheCurrentElement) {
  XmlDocument document("<a n='a'><b/><b n='b'/><b/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  ASSERT_TRUE(document.Find("b"));
  EXPECT_FALSE(document.Attribute("n"));
  ASSERT_TRUE(document.Next("b"));
  EXPECT_EQ(document.Attribute("n"), "b");
  ASSERT_TRUE(document.Next("b"));
  EXPECT_FALSE(document.Attribute("n"));
  ASSERT_TRUE(document.Leave("b"));
  EXPECT_EQ(document.Attribute("n"), "a");
}

TEST(XmlAttributeTest, WithAPrefixIsAnotherAttribute) {
  const std::string prefixed = "<a xmlns:p='urn:p' p:href='p' xml:lang='en'/>";
  EXPECT_EQ(RootAttribute(prefixed, "href"), std::nullopt);
  EXPECT_EQ(RootAttribute(prefixed, "lang"), std::nullopt);
  const std::string both = "<a xmlns:p='urn:p' p:href='p' href='plain'/>";
  EXPECT_EQ(RootAttribute(both, "href"), "plain");
  const std::string other_order = "<a xmlns:p='urn:p' href='plain' p:href='p'/>";
  EXPECT_EQ(RootAttribute(other_order, "href"), "plain");
}

TEST(XmlAttributeTest, WithoutAPrefixIsInNoNamespace) {
  XmlDocument document("<a xmlns='urn:x' n='1'/>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("urn:x:a"));
  EXPECT_EQ(document.Attribute("n"), "1");
}

TEST(XmlAttributeTest, NamespaceDeclarationsAreNone) {
  const std::string bytes = "<a xmlns:p='urn:p' n='1'/>";
  EXPECT_EQ(RootAttribute(bytes, "xmlns"), std::nullopt);
  EXPECT_EQ(RootAttribute(bytes, "p"), std::nullopt);
  EXPECT_EQ(RootAttribute(bytes, "n"), "1");
}

TEST(XmlAttributeTest, ValueIsDecoded) {
  EXPECT_EQ(RootAttribute("<a n='&lt;&amp;&gt;&quot;&apos;\">'/>", "n"), "<&>\"'\">");
  EXPECT_EQ(RootAttribute("<a n='&#65;&#x42;&#x1F600;\xC3\xA9'/>", "n"),
            "AB\xF0\x9F\x98\x80\xC3\xA9");
}

TEST(XmlAttributeTest, WhiteSpaceIsKeptAsSpacesAndReferencesAsTheyAre) {
  EXPECT_EQ(RootAttribute("<a n=' x\ty\nz\r\n.\r '/>", "n"), " x y z .  ");
  EXPECT_EQ(RootAttribute("<a n='&#9;&#10;&#13;&#32;'/>", "n"), "\t\n\r ");
}

TEST(XmlAttributeTest, GivenTwiceIsIllFormed) {
  EXPECT_FALSE(Opens("<a n='1' n='1'/>"));
  EXPECT_FALSE(Opens("<a xmlns:p='urn:x' xmlns:q='urn:x' p:n='1' q:n='2'/>"));
  EXPECT_TRUE(Opens("<a xmlns:p='urn:x' xmlns:q='urn:y' p:n='1' q:n='2' n='3'/>"));
}

TEST(XmlAttributeTest, EveryOneOfManyIsFound) {
  std::string bytes = "<a";
  for (int i = 0; i < 1000; ++i) bytes += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
  XmlDocument document(bytes + "/>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  for (int i = 999; i >= 0; --i) {
    EXPECT_EQ(document.Attribute("n" + std::to_string(i)), std::to_string(i));
  }
  EXPECT_FALSE(document.Attribute("n1000"));
}

}  // namespace
}  // namespace stowra_test
