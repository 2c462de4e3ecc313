// Document type declarations made to cost more than their size.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

const std::string kLongText(60'000, 'x');

// A list of `count` attributes of the element `b`, declared in one go.
std::string AttributeList(int count, const std::string& prefix, const std::string& rest) {
  std::string list = "<!ATTLIST b";
  for (int i = 0; i < count; ++i) list += " " + prefix + std::to_string(i) + " " + rest;
  return list + ">";
}

std::string ManyElements(std::size_t count) { return "<a>" + Repeated("<b/>", count) + "</a>"; }

// Nothing is there but the elements themselves.
void ExpectBare(ovrant::IXMLInput& reader) {
  ASSERT_TRUE(reader.FindElement("a"));
  ASSERT_TRUE(reader.FindElement("b"));
  ovrant::utils::ovrant_ustring value;
  EXPECT_FALSE(reader.GetAttribute("n", value));
  EXPECT_FALSE(reader.GetAttribute("n0", value));
}

TEST(XmlHostileDeclarationsTest, ALongDefaultOnManyElements) {
  OpenHostile(WithDeclarations("<!ATTLIST b n CDATA '" + kLongText + "'>", ManyElements(60'000)),
              ExpectBare);
}

TEST(XmlHostileDeclarationsTest, ALongDefaultNameOnManyElements) {
  OpenHostile(WithDeclarations("<!ATTLIST b " + kLongText + " CDATA ''>", ManyElements(60'000)),
              ExpectBare);
}

TEST(XmlHostileDeclarationsTest, ALongPrefixedDefaultOnManyElements) {
  const std::string declaration =
      "<!ATTLIST b xmlns:p CDATA 'u'><!ATTLIST b p:n CDATA '" + kLongText + "'>";
  OpenHostile(WithDeclarations(declaration, ManyElements(60'000)), ExpectBare);
}

// The parser hashes the whole name at each element.
TEST(XmlHostileDeclarationsTest, ALongPrefixedDefaultNameOnManyElements) {
  const std::string declaration = "<!ATTLIST b p:" + kLongText + " CDATA ''>";
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(declaration, "<a xmlns:p='u'>" + Repeated("<b/>", 60'000) + "</a>")));
}

TEST(XmlHostileDeclarationsTest, PrefixedDefaultsOfALongUriOnManyElements) {
  const std::string uri(256, 'u');
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(AttributeList(250, "p:n", "CDATA ''"),
                       "<a xmlns:p='" + uri + "'>" + Repeated("<b/>", 70'000) + "</a>")));
}

TEST(XmlHostileDeclarationsTest, ManyDefaultNamespacesOnManyElements) {
  const std::string uri(250, 'u');
  EXPECT_FALSE(OpenHostile(WithDeclarations(AttributeList(300, "xmlns:p", "CDATA '" + uri + "'"),
                                            ManyElements(60'000))));
}

TEST(XmlHostileDeclarationsTest, AFewPrefixedDefaultsAreFine) {
  const std::string declarations =
      AttributeList(3, "p:n", "CDATA 'v'") + "<!ATTLIST a xmlns:p CDATA 'http://a/namespace'>";
  const std::string element = "<b>some text of an element, as long as such texts are</b>";
  EXPECT_TRUE(OpenHostile(
      WithDeclarations(declarations, "<a>" + Repeated(element, 10'000) + "</a>"), ExpectBare));
}

// What counts is the longest list of one element.
TEST(XmlHostileDeclarationsTest, ALargeVocabularyIsFine) {
  std::string declarations;
  for (int i = 0; i < 100; ++i) {
    declarations += "<!ATTLIST e" + std::to_string(i);
    for (int k = 0; k < 12; ++k) declarations += " n" + std::to_string(k) + " CDATA #IMPLIED";
    declarations += ">";
  }
  EXPECT_TRUE(OpenHostile(WithDeclarations(declarations, ManyElements(20'000)), ExpectBare));
}

TEST(XmlHostileDeclarationsTest, TenThousandDefaultsOnManyElements) {
  OpenHostile(WithDeclarations(AttributeList(10'000, "n", "CDATA ''"), ManyElements(50'000)),
              ExpectBare);
}

TEST(XmlHostileDeclarationsTest, TenThousandPrefixedDefaultsOnManyElements) {
  OpenHostile(
      WithDeclarations("<!ATTLIST b xmlns:p CDATA 'u'>" + AttributeList(10'000, "p:n", "CDATA ''"),
                       ManyElements(50'000)),
      ExpectBare);
}

TEST(XmlHostileDeclarationsTest, TenThousandDefaultNamespacesOnManyElements) {
  OpenHostile(
      WithDeclarations(AttributeList(10'000, "xmlns:n", "CDATA 'u'"), ManyElements(50'000)));
}

// These bring about no attribute at all, and still are looked through at every element.
TEST(XmlHostileDeclarationsTest, ManyImpliedAttributesOnManyElements) {
  OpenHostile(
      WithDeclarations(AttributeList(100'000, "n", "CDATA #IMPLIED"), ManyElements(500'000)),
      ExpectBare);
}

TEST(XmlHostileDeclarationsTest, ManyRequiredAttributesOnManyElements) {
  OpenHostile(
      WithDeclarations(AttributeList(100'000, "n", "CDATA #REQUIRED"), ManyElements(500'000)),
      ExpectBare);
}

TEST(XmlHostileDeclarationsTest, ManyImpliedAttributesOfManyElementsOfAnEntity) {
  OpenHostile(WithDeclarations(AttributeList(100'000, "n", "CDATA #IMPLIED") + "<!ENTITY e '" +
                                   Repeated("<b/>", 1'000) + "'>",
                               "<a>" + Repeated("&e;", 10'000) + "</a>"));
}

TEST(XmlHostileDeclarationsTest, ManyDefaultsDeclaredInOneList) {
  OpenHostile(WithDeclarations(AttributeList(200'000, "n", "CDATA ''"), "<a/>"));
}

TEST(XmlHostileDeclarationsTest, ManyDefaultsDeclaredInManyLists) {
  std::string declarations;
  for (int i = 0; i < 200'000; ++i) {
    declarations += "<!ATTLIST b n" + std::to_string(i) + " CDATA ''>";
  }
  OpenHostile(WithDeclarations(declarations, "<a/>"));
}

TEST(XmlHostileDeclarationsTest, OneDefaultDeclaredManyTimes) {
  OpenHostile(WithDeclarations(Repeated("<!ATTLIST b n CDATA ''>", 200'000), ManyElements(100'000)),
              ExpectBare);
}

TEST(XmlHostileDeclarationsTest, OneImpliedAttributeDeclaredManyTimes) {
  OpenHostile(
      WithDeclarations(Repeated("<!ATTLIST b n CDATA #IMPLIED>", 100'000), ManyElements(500'000)),
      ExpectBare);
}

TEST(XmlHostileDeclarationsTest, ManyIdentifiers) {
  OpenHostile(WithDeclarations(AttributeList(200'000, "n", "ID #IMPLIED"), "<a/>"));
}

TEST(XmlHostileDeclarationsTest, AnEnumerationOfAMillion) {
  OpenHostile(WithDeclarations("<!ATTLIST a n (" + Repeated("x|", 1'000'000) + "y) #IMPLIED>",
                               "<a n='x'/>"));
}

TEST(XmlHostileDeclarationsTest, ManyEnumerations) {
  OpenHostile(WithDeclarations(
      Repeated("<!ATTLIST a n (" + Repeated("x|", 1'000) + "y) #IMPLIED>", 1'000), "<a n='x'/>"));
}

TEST(XmlHostileDeclarationsTest, DeepContentModels) {
  EXPECT_TRUE(OpenHostile(WithDeclarations(
      "<!ELEMENT a " + Repeated("(", 1'000'000) + "b" + Repeated(")", 1'000'000) + ">", "<a/>")));
}

TEST(XmlHostileDeclarationsTest, WideContentModels) {
  EXPECT_TRUE(
      OpenHostile(WithDeclarations("<!ELEMENT a (" + Repeated("b,", 1'000'000) + "b)>", "<a/>")));
}

TEST(XmlHostileDeclarationsTest, ManyDeclarations) {
  std::string declarations;
  for (int i = 0; i < 100'000; ++i) {
    const std::string name = "n" + std::to_string(i);
    declarations +=
        "<!ELEMENT " + name + " EMPTY><!ENTITY " + name + " ''><!NOTATION " + name + " SYSTEM ''>";
  }
  EXPECT_TRUE(OpenHostile(WithDeclarations(declarations, "<a/>")));
}

TEST(XmlHostileDeclarationsTest, DefaultsOfManyElements) {
  std::string declarations;
  for (int i = 0; i < 100'000; ++i) {
    declarations += "<!ATTLIST n" + std::to_string(i) + " n CDATA ''>";
  }
  OpenHostile(WithDeclarations(declarations, "<a/>"));
}

TEST(XmlHostileDeclarationsTest, AFewHundredAttributesAreFine) {
  const std::string declarations =
      AttributeList(500, "n", "CDATA #IMPLIED") + AttributeList(10, "d", "CDATA 'default'");
  EXPECT_TRUE(OpenHostile(WithDeclarations(declarations, ManyElements(1'000)), ExpectBare));
}

// Parameter entities may be referred to between declarations.
TEST(XmlHostileDeclarationsTest, AChainOf100000ParameterEntities) {
  std::string declarations = "<!ENTITY % e0 ''>";
  for (int i = 1; i <= 100'000; ++i) {
    declarations += "<!ENTITY % e" + std::to_string(i) + " '&#37;e" + std::to_string(i - 1) + ";'>";
  }
  OpenHostile(WithDeclarations(declarations + "%e100000;", "<a/>"));
}

TEST(XmlHostileDeclarationsTest, AChainOf100000ParameterEntitiesInsideEntities) {
  std::string declarations = "<!ENTITY % e0 ''>";
  for (int i = 1; i <= 100'000; ++i) {
    const std::string number = std::to_string(i);
    declarations += "<!ENTITY % d" + number + " \"<!ENTITY &#37; e" + number + " '&#38;#37;e" +
                    std::to_string(i - 1) + ";'>\">%d" + number + ";";
  }
  OpenHostile(WithDeclarations(declarations + "%e100000;", "<a/>"));
}

TEST(XmlHostileDeclarationsTest, BillionParameterEntities) {
  std::string declarations = "<!ENTITY % e0 ''>";
  for (int i = 1; i <= 9; ++i) {
    declarations += "<!ENTITY % e" + std::to_string(i) + " '" +
                    Repeated("&#37;e" + std::to_string(i - 1) + ";", 10) + "'>";
  }
  OpenHostile(WithDeclarations(declarations + "%e9;", "<a/>"));
}

// Each value has the one before twice, expanded when it is declared.
TEST(XmlHostileDeclarationsTest, DoublingParameterEntities) {
  std::string declarations = "<!ENTITY % e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    const std::string before = "&#37;e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY % d" + number + " \"<!ENTITY &#37; e" + number + " '" + before +
                    before + "'>\">%d" + number + ";";
  }
  OpenHostile(WithDeclarations(declarations, "<a/>"));
}

TEST(XmlHostileDeclarationsTest, ParameterEntitiesThatDeclareEntities) {
  const std::string text =
      "<!ENTITY % p \"<!ENTITY e '" + kLongText + "'>\">%p;<!ENTITY % q '&#37;p;'>";
  OpenHostile(WithDeclarations(text + Repeated("%q;", 60'000), "<a>&e;</a>"));
}

TEST(XmlHostileDeclarationsTest, AnUnendedDeclaration) {
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a [" + Repeated("<!ENTITY % p 'x'>%p;[", 100'000)));
  EXPECT_FALSE(OpenHostile(Repeated("<!DOCTYPE a [", 100'000)));
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a " + Repeated("[", 1'000'000)));
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a [" + Repeated("<![INCLUDE[", 100'000)));
}

}  // namespace
}  // namespace stowra_test
