// Elements in namespaces.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

TEST(XmlNamespaceTest, ADefaultNamespaceHoldsForWhatLiesInside) {
  XmlDocument document("<a xmlns='http://host/x'><b>1</b></a>");
  ASSERT_TRUE(document.is_open());
  for (const char* const wrong :
       {"a", ":a", "http://host/xa", "http://host/x/:a", "HTTP://host/x:a",
        "http://host/x:", "http://host/x: a", "http://host/x::a"}) {
    EXPECT_FALSE(document.Find(wrong)) << wrong;
  }
  ASSERT_TRUE(document.Find("http://host/x:a"));
  EXPECT_EQ(document.Text("http://host/x:b"), "1");
  EXPECT_FALSE(document.Text("b"));
  EXPECT_FALSE(document.Leave("a"));
  EXPECT_TRUE(document.Leave("http://host/x:a"));
}

TEST(XmlNamespaceTest, WithoutOneTheNameIsTheLocalName) {
  XmlDocument document("<a><b>1</b></a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Find(":a"));
  ASSERT_TRUE(document.Find("a"));
  EXPECT_EQ(document.Text("b"), "1");
}

TEST(XmlNamespaceTest, ThePrefixDoesNotMatter) {
  XmlDocument document(
      "<p:a xmlns:p='urn:x'><q:b xmlns:q='urn:x'>1</q:b><b xmlns='urn:x'>2</b><p:b>3</p:b>"
      "<b>4</b></p:a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Find("p:a"));
  ASSERT_TRUE(document.Find("urn:x:a"));
  EXPECT_EQ(document.Text("b"), "4");
  EXPECT_FALSE(document.Text("p:b"));
  ASSERT_TRUE(document.Find("urn:x:b"));
  EXPECT_TRUE(document.Next("urn:x:b"));
  EXPECT_TRUE(document.Next("urn:x:b"));
  EXPECT_FALSE(document.Next("urn:x:b"));
  EXPECT_TRUE(document.Next("b"));
}

TEST(XmlNamespaceTest, SameLocalNamesAreToldApart) {
  XmlDocument document(
      "<feed xmlns='urn:f' xmlns:m='urn:m'><m:title>media</m:title><title xmlns=''>none</title>"
      "<title>feed</title></feed>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("urn:f:feed"));
  EXPECT_EQ(document.Text("urn:f:title"), "feed");
  EXPECT_EQ(document.Text("urn:m:title"), "media");
  EXPECT_EQ(document.Text("title"), "none");
}

TEST(XmlNamespaceTest, DeclarationsMayBeReplacedAndTakenBack) {
  XmlDocument document(
      "<a xmlns='urn:1' xmlns:p='urn:p'><b xmlns='urn:2' xmlns:p='urn:q'><c/><p:c/></b>"
      "<b xmlns=''><c/></b><p:b/><b/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("urn:1:a"));
  ASSERT_TRUE(document.Find("urn:2:b"));
  EXPECT_TRUE(document.Text("urn:2:c"));
  EXPECT_TRUE(document.Text("urn:q:c"));
  EXPECT_FALSE(document.Text("urn:p:c"));
  EXPECT_FALSE(document.Text("urn:1:c"));
  ASSERT_TRUE(document.Leave("urn:2:b"));
  ASSERT_TRUE(document.Find("b"));
  EXPECT_TRUE(document.Text("c"));
  ASSERT_TRUE(document.Leave("b"));
  EXPECT_TRUE(document.Find("urn:p:b"));
  EXPECT_TRUE(document.Next("urn:1:b"));
}

TEST(XmlNamespaceTest, HoldForTheElementThatDeclaresThem) {
  XmlDocument document("<a><p:b xmlns:p='urn:x'/><b xmlns='urn:y'/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  EXPECT_TRUE(document.Text("urn:x:b"));
  EXPECT_TRUE(document.Text("urn:y:b"));
  EXPECT_FALSE(document.Text("b"));
}

TEST(XmlNamespaceTest, TheUriIsTakenAsWritten) {
  XmlDocument document("<a xmlns='HTTP://h/%7e a&amp;b?c:d#&#x65;/../ '/>");
  ASSERT_TRUE(document.is_open());
  EXPECT_TRUE(document.Find("HTTP://h/%7e a&b?c:d#e/../ :a"));
}

TEST(XmlNamespaceTest, TheUriMayHaveAnyCharacter) {
  XmlDocument document("<a xmlns='\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80'><b/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80:a"));
  EXPECT_TRUE(document.Text("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80:b"));
}

TEST(XmlNamespaceTest, HalfACharacterIsNoReplacementCharacter) {
  XmlDocument document("<a xmlns='\xEF\xBF\xBD'/>");
  ASSERT_TRUE(document.is_open());
  ovrant::utils::ovrant_ustring name = "\xEF\xBF\xBD:a";
  name[0] = 0xD800;
  EXPECT_FALSE(document.reader().FindElement(name));
  name[0] = 0xFFFD;
  EXPECT_TRUE(document.reader().FindElement(name));
}

TEST(XmlNamespaceTest, TheXmlPrefixNeedsNoDeclaration) {
  XmlDocument document("<xml:a/>");
  ASSERT_TRUE(document.is_open());
  EXPECT_TRUE(document.Find("http://www.w3.org/XML/1998/namespace:a"));
}

TEST(XmlNamespaceTest, BrokenRulesAreIllFormed) {
  EXPECT_FALSE(Opens("<p:a/>"));
  EXPECT_FALSE(Opens("<a p:n='1'/>"));
  EXPECT_FALSE(Opens("<a><b xmlns:p='urn:x'/><p:b/></a>"));
  EXPECT_FALSE(Opens("<a xmlns:p=''/>"));
  EXPECT_FALSE(Opens("<a xmlns:xmlns='urn:x'/>"));
  EXPECT_FALSE(Opens("<a xmlns:xml='urn:x'/>"));
  EXPECT_FALSE(Opens("<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>"));
  EXPECT_FALSE(Opens("<a xmlns='http://www.w3.org/2000/xmlns/'/>"));
  EXPECT_FALSE(Opens("<a:b:c xmlns:a='urn:x'/>"));
  EXPECT_FALSE(Opens("<:a/>"));
  EXPECT_FALSE(Opens("<a:/>"));
  EXPECT_FALSE(Opens("<p:a xmlns:p='urn:x' xmlns:q='urn:x'></q:a>"));
}

TEST(XmlNamespaceTest, AUriMayHave256Bytes) {
  for (const std::string prefix : {"", ":p"}) {
    const std::string head = prefix.empty() ? "<a xmlns='" : "<p:a xmlns:p='";
    EXPECT_TRUE(Opens(head + std::string(256, 'u') + "'/>"));
    EXPECT_FALSE(Opens(head + std::string(257, 'u') + "'/>"));
    EXPECT_FALSE(Opens(head + Repeated("\xC3\xA9", 129) + "'/>"));
    EXPECT_TRUE(Opens(head + Repeated("\xC3\xA9", 128) + "'/>"));
  }
}

TEST(XmlNamespaceTest, AnOverlongUriIsRefusedWhereverItIsDeclared) {
  const std::string uri(257, 'u');
  EXPECT_FALSE(Opens("<a><b><c xmlns:unused='" + uri + "'/></b></a>"));
  EXPECT_FALSE(Opens("<a><b xmlns='" + uri + "'>x</b></a>"));
  EXPECT_TRUE(Opens("<a n='" + uri + "'>" + uri + "</a>"));
}

TEST(XmlNamespaceTest, OpensAFeedOfSeveral) {
  XmlDocument document(
      "<feed xmlns='http://www.w3.org/2005/Atom'"
      " xmlns:os='http://a9.com/-/spec/opensearchrss/1.0/'"
      " xmlns:media='http://search.yahoo.com/mrss/'><os:totalResults>12</os:totalResults>"
      "<entry><title>T</title><media:group><media:content url='u'/></media:group></entry></feed>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("http://www.w3.org/2005/Atom:feed"));
  EXPECT_EQ(document.Int("http://a9.com/-/spec/opensearchrss/1.0/:totalResults"), 12);
  ASSERT_TRUE(document.Find("http://www.w3.org/2005/Atom:entry"));
  EXPECT_EQ(document.Text("http://www.w3.org/2005/Atom:title"), "T");
  ASSERT_TRUE(document.Find("http://search.yahoo.com/mrss/:group"));
  ASSERT_TRUE(document.Find("http://search.yahoo.com/mrss/:content"));
  EXPECT_EQ(document.Attribute("url"), "u");
}

}  // namespace
}  // namespace stowra_test
