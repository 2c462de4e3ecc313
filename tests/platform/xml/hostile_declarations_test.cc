// Document type declarations made to cost more than their size.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

const std::string kLongText(60'000, 'x');

// `<!ENTITY name "value">`. The value may have no quotation mark.
std::string Entity(const std::string& name, const std::string& value) {
  return "<!ENTITY " + name + " \"" + value + "\">";
}

// Entities of which each refers `times` times to the one before.
std::string Tower(int levels, std::size_t times, const std::string& ground) {
  std::string declarations = Entity("e0", ground);
  for (int i = 1; i <= levels; ++i) {
    declarations +=
        Entity("e" + std::to_string(i), Repeated("&e" + std::to_string(i - 1) + ";", times));
  }
  return declarations;
}

// `before` number `after`, for each number from `begin` up to `end`.
std::string Numbered(int begin, int end, const std::string& before, const std::string& after) {
  std::string all;
  for (int i = begin; i < end; ++i) all += before + std::to_string(i) + after;
  return all;
}

std::string ManyElements(std::size_t count) { return "<a>" + Repeated("<b/>", count) + "</a>"; }

TEST(XmlHostileDeclarationsTest, BillionLaughs) {
  for (const std::string ground : {"lol", "", "<b/>"}) {
    const std::string declarations = Tower(9, 10, ground);
    EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a>&e9;</a>")));
    EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a n='&e9;'/>")));
  }
}

TEST(XmlHostileDeclarationsTest, QuadraticGrowth) {
  const std::string references = Repeated("&e;", 60'000);
  const std::string entity = Entity("e", kLongText);
  EXPECT_FALSE(OpenHostile(WithDeclarations(entity, "<a>" + references + "</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(entity, "<a n='" + references + "'/>")));
  EXPECT_FALSE(
      OpenHostile(WithDeclarations(entity + "<!ATTLIST a n CDATA '" + references + "'>", "<a/>")));
}

TEST(XmlHostileDeclarationsTest, AChainOf100000Entities) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(100'000, 1, "x"), "<a>&e100000;</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(100'000, 1, "x"), "<a n='&e100000;'/>")));
}

// The parser keeps the text before the reader can refuse it.
TEST(XmlHostileDeclarationsTest, AHugeEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", std::string(100'000'000, 'x')), "<a/>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("% p", std::string(10'000'000, 'x')), "<a/>")));
}

TEST(XmlHostileDeclarationsTest, DoublingParameterEntities) {
  std::string declarations = "<!ENTITY % e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    const std::string before = "&#37;e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY % d" + number + " \"<!ENTITY &#37; e" + number + " '" + before +
                    before + "'>\">%d" + number + ";";
  }
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a/>")));
}

TEST(XmlHostileDeclarationsTest, DeclarationsAfterAParameterEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations("%p;" + Tower(9, 10, "lol"), "<a>&e9;</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations("%p;" + Tower(100'000, 1, "x"), "<a/>")));
}

// The parser would look through the whole list at each attribute.
TEST(XmlHostileDeclarationsTest, AListOfTokensAndManyAttributes) {
  const std::string list = "<!ATTLIST b " + Numbered(0, 17'000, " n", " NMTOKEN #IMPLIED") + ">";
  const std::string element = "<b" + Numbered(16'000, 17'000, " n", "=' '") + "/>";
  EXPECT_FALSE(OpenHostile(WithDeclarations(list, "<a>" + Repeated(element, 870) + "</a>")));
}

TEST(XmlHostileDeclarationsTest, ADefaultOnManyElements) {
  for (const std::string attribute : {"n", "xmlns", "xmlns:p"}) {
    const std::string list = "<!ATTLIST b " + attribute + " CDATA '" + kLongText + "'>";
    EXPECT_FALSE(OpenHostile(WithDeclarations(list, ManyElements(60'000))));
  }
  const std::string long_name = "<!ATTLIST b " + kLongText + " CDATA ''>";
  EXPECT_FALSE(OpenHostile(WithDeclarations(long_name, ManyElements(60'000))));
}

TEST(XmlHostileDeclarationsTest, ManyAttributesOnManyElements) {
  for (const std::string rest : {" CDATA ''", " CDATA #IMPLIED", " CDATA #REQUIRED"}) {
    const std::string list = "<!ATTLIST b" + Numbered(0, 100'000, " n", rest) + ">";
    EXPECT_FALSE(OpenHostile(WithDeclarations(list, ManyElements(500'000))));
  }
}

TEST(XmlHostileDeclarationsTest, AnEnumerationOfAMillion) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(
      "<!ATTLIST a n (" + Repeated("x|", 1'000'000) + "y) #IMPLIED>", "<a n='x'/>")));
}

TEST(XmlHostileDeclarationsTest, ManyEmptyAttributeLists) {
  EXPECT_TRUE(OpenHostile(WithDeclarations(Numbered(0, 300'000, "<!ATTLIST n", ">"), "<a/>")));
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
  EXPECT_TRUE(
      OpenHostile(WithDeclarations(Numbered(0, 100'000, "<!ELEMENT n", " EMPTY>") +
                                       Numbered(0, 100'000, "<!NOTATION n", " SYSTEM 'somewhere'>"),
                                   "<a/>")));
}

TEST(XmlHostileDeclarationsTest, HugeIdentifiers) {
  const std::string id(10'000'000, 'x');
  EXPECT_TRUE(OpenHostile("<!DOCTYPE a PUBLIC '" + id + "' '" + id + "'><a/>"));
  EXPECT_TRUE(OpenHostile(WithDeclarations("<!NOTATION n PUBLIC '" + id + "'>", "<a/>")));
}

TEST(XmlHostileDeclarationsTest, AnUnendedDeclaration) {
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a [" + Repeated("<!ELEMENT a ANY>[", 100'000)));
  EXPECT_FALSE(OpenHostile(Repeated("<!DOCTYPE a [", 100'000)));
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a " + Repeated("[", 1'000'000)));
  EXPECT_FALSE(OpenHostile("<!DOCTYPE a [" + Repeated("<![INCLUDE[", 100'000)));
}

// With an external subset each start tag is looked at once more.
TEST(XmlHostileDeclarationsTest, HugeTagsAndAnExternalSubset) {
  const std::string doctype = "<!DOCTYPE a SYSTEM 'x'>";
  EXPECT_TRUE(OpenHostile(doctype + "<a" + Numbered(0, 1'000'000, " n", "='&lt;'") + "/>"));
  EXPECT_TRUE(OpenHostile(doctype + "<a n='" + Repeated("&lt;", 5'000'000) + "'/>"));
  EXPECT_TRUE(OpenHostile(doctype + "<a>" + Repeated("<b n='&lt;'/>", 1'000'000) + "</a>"));
  EXPECT_FALSE(OpenHostile(doctype + "<a n='" + Repeated("&lt;", 5'000'000) + "&e;'/>"));
}

}  // namespace
}  // namespace stowra_test
