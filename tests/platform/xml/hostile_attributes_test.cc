// Attributes, namespaces and names in great numbers and lengths.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

const std::string kLongText(60'000, 'x');

// As long as the URI of a namespace may be.
const std::string kLongestUri(256, 'u');

// `count` pieces of markup, each `before` number `after`.
std::string Numbered(int count, const std::string& before, const std::string& after) {
  std::string all;
  for (int i = 0; i < count; ++i) all += before + std::to_string(i) + after;
  return all;
}

TEST(XmlHostileAttributesTest, AMillionOnOneElement) {
  EXPECT_TRUE(
      OpenHostile("<a" + Numbered(1'000'000, " n", "=''") + "/>", [](ovrant::IXMLInput& reader) {
        ovrant::utils::ovrant_ustring value = "before";
        ASSERT_TRUE(reader.FindElement("a"));
        EXPECT_TRUE(reader.GetAttribute("n999999", value));
        EXPECT_EQ(value, "");
        EXPECT_FALSE(reader.GetAttribute("n1000000", value));
      }));
}

TEST(XmlHostileAttributesTest, AMillionPrefixedOnOneElement) {
  EXPECT_TRUE(OpenHostile("<a xmlns:p='u'" + Numbered(1'000'000, " p:n", "=''") + "/>"));
}

TEST(XmlHostileAttributesTest, AMillionOnTwoElements) {
  const std::string attributes = Numbered(1'000'000, " n", "=''");
  EXPECT_TRUE(OpenHostile("<a" + attributes + "><b" + attributes + "/></a>"));
}

TEST(XmlHostileAttributesTest, OneElementOfManyAndManyOfNone) {
  EXPECT_TRUE(OpenHostile("<a><b" + Numbered(300'000, " n", "=''") + "/>" +
                          Repeated("<b/>", 1'000'000) + "</a>"));
}

TEST(XmlHostileAttributesTest, OneOnEachOfAMillionElements) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("<b n=''/>", 1'000'000) + "</a>"));
}

TEST(XmlHostileAttributesTest, AnotherOnEachOfAMillionElements) {
  EXPECT_TRUE(OpenHostile("<a>" + Numbered(1'000'000, "<b n", "=''/>") + "</a>"));
}

TEST(XmlHostileNamespacesTest, ALongUriOnTheRootOfManyElements) {
  const std::string elements = Repeated("<b/>", 60'000);
  EXPECT_FALSE(OpenHostile("<a xmlns='" + kLongText + "'>" + elements + "</a>"));
}

TEST(XmlHostileNamespacesTest, ALongUriOfPrefixedElementsAndAttributes) {
  const std::string elements = Repeated("<p:b p:n=''/>", 60'000);
  EXPECT_FALSE(OpenHostile("<a xmlns:p='" + kLongText + "'>" + elements + "</a>"));
}

TEST(XmlHostileNamespacesTest, ALongUriOnEachElement) {
  const std::string element = "<b xmlns='" + kLongText + "'/>";
  EXPECT_FALSE(OpenHostile("<a>" + Repeated(element, 1'000) + "</a>"));
}

TEST(XmlHostileNamespacesTest, ALongPrefixOnManyElements) {
  const std::string element = "<b xmlns:" + std::string(1'000, 'x') + "='u'/>";
  EXPECT_TRUE(OpenHostile("<a>" + Repeated(element, 10'000) + "</a>"));
}

TEST(XmlHostileNamespacesTest, TheLongestUriOfAMillionElements) {
  EXPECT_TRUE(
      OpenHostile("<a xmlns='" + kLongestUri + "'>" + Repeated("<b/>", 1'000'000) + "</a>"));
}

TEST(XmlHostileNamespacesTest, TheLongestUriOfAMillionNames) {
  EXPECT_FALSE(
      OpenHostile("<a xmlns='" + kLongestUri + "'>" + Numbered(1'000'000, "<b", "/>") + "</a>"));
}

TEST(XmlHostileNamespacesTest, TheLongestUriOfAMillionAttributes) {
  EXPECT_TRUE(OpenHostile("<a xmlns:p='" + kLongestUri + "'>" + Repeated("<b p:n=''/>", 1'000'000) +
                          "</a>"));
}

TEST(XmlHostileNamespacesTest, TheLongestUriOfAMillionAttributesOfOneElement) {
  EXPECT_FALSE(
      OpenHostile("<a xmlns:p='" + kLongestUri + "'" + Numbered(1'000'000, " p:n", "=''") + "/>"));
}

TEST(XmlHostileNamespacesTest, TheLongestUriOnEachOfManyElements) {
  EXPECT_TRUE(OpenHostile("<a>" + Repeated("<b xmlns='" + kLongestUri + "'/>", 100'000) + "</a>"));
}

TEST(XmlHostileNamespacesTest, ManyDeclarationsOnOneElement) {
  EXPECT_TRUE(OpenHostile("<a" + Numbered(10'000, " xmlns:p", "='u'") + "/>"));
  EXPECT_FALSE(OpenHostile("<a" + Numbered(300'000, " xmlns:p", "='u'") + "/>"));
}

TEST(XmlHostileNamespacesTest, ManyUris) {
  EXPECT_TRUE(OpenHostile("<a>" + Numbered(300'000, "<b xmlns='u", "'/>") + "</a>"));
}

TEST(XmlHostileNamespacesTest, OnePrefixOnEveryLevel) {
  EXPECT_TRUE(OpenHostile(
      "<a>" + Repeated(Repeated("<p:b xmlns:p='u'>", 200) + Repeated("</p:b>", 200), 1'000) +
      "</a>"));
}

TEST(XmlHostileNamespacesTest, ManyDeclarationsAndManyElements) {
  const auto open = [](int count) {
    return OpenHostile("<a" + Numbered(count, " xmlns:p", "='u'") + ">" +
                       Numbered(count, "<p", ":b/>") + "</a>");
  };
  EXPECT_TRUE(open(10'000));
  EXPECT_TRUE(open(100'000));
}

}  // namespace
}  // namespace stowra_test
