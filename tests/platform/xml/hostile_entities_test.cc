// Documents whose entities grow.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

// `<!ENTITY name "value">`; the value may have no quotation mark.
std::string Entity(const std::string& name, const std::string& value) {
  return "<!ENTITY " + name + " \"" + value + "\">";
}

// Each refers to the one before `times` times.
std::string Tower(int levels, std::size_t times, const std::string& ground) {
  std::string declarations = Entity("e0", ground);
  for (int i = 1; i <= levels; ++i) {
    declarations +=
        Entity("e" + std::to_string(i), Repeated("&e" + std::to_string(i - 1) + ";", times));
  }
  return declarations;
}

const std::string kLongText(60'000, 'x');

TEST(XmlHostileEntitiesTest, ModestGrowthIsFine) {
  const std::string kilobyte(1'000, 'x');
  EXPECT_TRUE(
      OpenHostile(WithDeclarations(Entity("e", kilobyte), "<a>" + Repeated("&e;", 500) + "</a>"),
                  [](ovrant::IXMLInput& reader) {
                    ovrant::utils::ovrant_ustring text;
                    ASSERT_TRUE(reader.GetElementText("a", text));
                    EXPECT_EQ(text.length(), 500'000U);
                  }));
}

TEST(XmlHostileEntitiesTest, BillionLaughsInText) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(9, 10, "lol"), "<a>&e9;</a>")));
}

TEST(XmlHostileEntitiesTest, BillionLaughsInAnAttribute) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(9, 10, "lol"), "<a n='&e9;'/>")));
}

TEST(XmlHostileEntitiesTest, BillionElements) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(9, 10, "<b/>"), "<a>&e9;</a>")));
}

TEST(XmlHostileEntitiesTest, BillionOfNothing) {
  OpenHostile(WithDeclarations(Tower(9, 10, ""), "<a>&e9;</a>"));
}

TEST(XmlHostileEntitiesTest, BillionOfNothingInAnAttribute) {
  OpenHostile(WithDeclarations(Tower(9, 10, ""), "<a n='&e9;'/>"));
}

TEST(XmlHostileEntitiesTest, BillionComments) {
  OpenHostile(WithDeclarations(Tower(9, 10, "<!---->"), "<a>&e9;</a>"));
}

TEST(XmlHostileEntitiesTest, SixtyLevelsOfTwo) {
  OpenHostile(WithDeclarations(Tower(60, 2, ""), "<a>&e60;</a>"));
}

TEST(XmlHostileEntitiesTest, QuadraticGrowthInText) {
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(Entity("e", kLongText), "<a>" + Repeated("&e;", 60'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, QuadraticGrowthInAnAttribute) {
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(Entity("e", kLongText), "<a n='" + Repeated("&e;", 60'000) + "'/>")));
}

TEST(XmlHostileEntitiesTest, QuadraticGrowthInManyAttributes) {
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(Entity("e", kLongText), "<a>" + Repeated("<b n='&e;'/>", 60'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, QuadraticGrowthInADefault) {
  OpenHostile(WithDeclarations(
      Entity("e", kLongText) + "<!ATTLIST a n CDATA '" + Repeated("&e;", 60'000) + "'>", "<a/>"));
}

TEST(XmlHostileEntitiesTest, ManyElementsFromOneEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", Repeated("<b/>", 10'000)),
                                            "<a>" + Repeated("&e;", 10'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, ManyAttributesFromOneEntity) {
  EXPECT_FALSE(
      OpenHostile(WithDeclarations(Entity("e", Repeated("<b n='' m='' o='' p=''/>", 1'000)),
                                   "<a>" + Repeated("&e;", 10'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, ALongElementNameFromAnEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", "<" + kLongText + "/>"),
                                            "<a>" + Repeated("&e;", 60'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, AFairlyLongElementNameFromAnEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", "<" + std::string(5'000, 'x') + "/>"),
                                            "<a>" + Repeated("&e;", 5'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, ALongAttributeNameFromAnEntity) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", "<b " + kLongText + "=''/>"),
                                            "<a>" + Repeated("&e;", 60'000) + "</a>")));
}

TEST(XmlHostileEntitiesTest, ALongCommentFromAnEntity) {
  OpenHostile(WithDeclarations(Entity("e", "<!--" + kLongText + "-->"),
                               "<a>" + Repeated("&e;", 60'000) + "</a>"));
}

TEST(XmlHostileEntitiesTest, ALongUnusedPrefixFromAnEntity) {
  OpenHostile(WithDeclarations(Entity("e", "<b xmlns:" + kLongText + "='u'/>"),
                               "<a>" + Repeated("&e;", 60'000) + "</a>"));
}

// The parser's own protection against growth begins at 8 MiB and allows 100 times the input.
TEST(XmlHostileEntitiesTest, ALargeEntitySeveralTimesInText) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", std::string(5'000'000, 'x')),
                                            "<a>" + Repeated("&e;", 90) + "</a>")));
}

TEST(XmlHostileEntitiesTest, ALargeEntitySeveralTimesInAnAttribute) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Entity("e", std::string(5'000'000, 'x')),
                                            "<a n='" + Repeated("&e;", 90) + "'/>")));
}

TEST(XmlHostileEntitiesTest, ALargeEntitySeveralTimesInADefault) {
  OpenHostile(WithDeclarations(Entity("e", std::string(5'000'000, 'x')) + "<!ATTLIST a n CDATA '" +
                                   Repeated("&e;", 90) + "'>",
                               "<a/>"));
}

TEST(XmlHostileEntitiesTest, ALargeEntityInManyDefaults) {
  std::string declarations = Entity("e", std::string(5'000'000, 'x'));
  for (int i = 0; i < 90; ++i) {
    declarations += "<!ATTLIST a n" + std::to_string(i) + " CDATA '&e;'>";
  }
  OpenHostile(WithDeclarations(declarations, "<a/>"));
}

std::string Chain(int length, const std::string& ground) { return Tower(length, 1, ground); }

TEST(XmlHostileEntitiesTest, AChainOf100000InText) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Chain(100'000, "x"), "<a>&e100000;</a>")));
}

TEST(XmlHostileEntitiesTest, AChainOf100000InAnAttribute) {
  EXPECT_FALSE(OpenHostile(WithDeclarations(Chain(100'000, "x"), "<a n='&e100000;'/>")));
}

TEST(XmlHostileEntitiesTest, AChainOf100000InADefault) {
  EXPECT_FALSE(OpenHostile(
      WithDeclarations(Chain(100'000, "x") + "<!ATTLIST a n CDATA '&e100000;'>", "<a/>")));
}

TEST(XmlHostileEntitiesTest, AChainOf100000DeclaredBackwards) {
  std::string declarations;
  for (int i = 100'000; i > 0; --i) {
    declarations += Entity("e" + std::to_string(i), "&e" + std::to_string(i - 1) + ";");
  }
  declarations += Entity("e0", "x");
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a>&e100000;</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a n='&e100000;'/>")));
}

// A reference may be hidden: what stands for '&' is expanded when the entity is declared.
TEST(XmlHostileEntitiesTest, AChainOf100000HiddenReferences) {
  for (const std::string ampersand : {"&#38;", "&#x26;", "&#0000038;"}) {
    std::string declarations = Entity("e0", "x");
    for (int i = 1; i <= 100'000; ++i) {
      declarations +=
          Entity("e" + std::to_string(i), ampersand + "e" + std::to_string(i - 1) + ";");
    }
    EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a>&e100000;</a>")));
    EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a n='&e100000;'/>")));
  }
}

TEST(XmlHostileEntitiesTest, AChainOf100000ThroughElements) {
  std::string declarations = Entity("e0", "x");
  for (int i = 1; i <= 100'000; ++i) {
    declarations +=
        Entity("e" + std::to_string(i), "<b n='1'/>&e" + std::to_string(i - 1) + ";<c></c>");
  }
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a>&e100000;</a>")));
}

TEST(XmlHostileEntitiesTest, AChainOf100000ThroughAttributesOfElements) {
  std::string declarations = Entity("e0", "x");
  for (int i = 1; i <= 100'000; ++i) {
    declarations += Entity("e" + std::to_string(i), "<b n='&e" + std::to_string(i - 1) + ";'/>");
  }
  OpenHostile(WithDeclarations(declarations, "<a>&e100000;</a>"));
}

TEST(XmlHostileEntitiesTest, ACircleOf100000) {
  std::string declarations = Entity("e0", "&e100000;");
  for (int i = 1; i <= 100'000; ++i) {
    declarations += Entity("e" + std::to_string(i), "&e" + std::to_string(i - 1) + ";");
  }
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a>&e5;</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(declarations, "<a n='&e5;'/>")));
}

TEST(XmlHostileEntitiesTest, AMillionReferencesToNothing) {
  OpenHostile(WithDeclarations(Entity("e", ""), "<a>" + Repeated("&e;", 1'000'000) + "</a>"));
}

TEST(XmlHostileEntitiesTest, SixtyFourMayReferToOthers) {
  EXPECT_TRUE(OpenHostile(WithDeclarations(Tower(64, 1, "x"), "<a>&e64;</a>")));
  EXPECT_FALSE(OpenHostile(WithDeclarations(Tower(65, 1, "x"), "<a>&e0;</a>")));
}

TEST(XmlHostileEntitiesTest, CharactersAreNoReferencesToOthers) {
  std::string declarations;
  for (int i = 0; i < 100; ++i) {
    declarations += Entity("e" + std::to_string(i), "&amp; &lt; &gt; &apos; &quot; &#38;#65;");
  }
  EXPECT_TRUE(
      OpenHostile(WithDeclarations(declarations, "<a>&e99;</a>"), [](ovrant::IXMLInput& reader) {
        ovrant::utils::ovrant_ustring text;
        ASSERT_TRUE(reader.GetElementText("a", text));
        EXPECT_EQ(text, "& < > ' \" A");
      }));
}

TEST(XmlHostileEntitiesTest, ParameterEntitiesDoNotCount) {
  std::string declarations;
  for (int i = 0; i < 100; ++i) declarations += Entity("% p" + std::to_string(i), "&other;");
  EXPECT_TRUE(OpenHostile(WithDeclarations(declarations, "<a/>")));
}

}  // namespace
}  // namespace stowra_test
