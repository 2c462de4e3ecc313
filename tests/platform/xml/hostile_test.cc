// Documents whose parts are long, deep or many, or whose declarations would cost more than their
// size.

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

constexpr std::size_t kHuge = 100'000'000;
constexpr int kMillion = 1'000'000;
constexpr std::size_t kAnyLength = 0 - std::size_t{1};

const std::string kLongText(60'000, 'x');

// As long as the URI of a namespace may be.
const std::string kLongestUri(256, 'u');

struct Hostile {
  const char* name;
  bool opens;
  std::string (*bytes)();
  std::size_t length = kAnyLength;  // of the text of the root element `a`, in code units
};

void PrintTo(const Hostile& hostile, std::ostream* out) { *out << hostile.name; }

class XmlHostileTest : public testing::TestWithParam<Hostile> {};

TEST_P(XmlHostileTest, CostsNoMoreThanItsSize) {
  const std::size_t length = GetParam().length;
  const bool opened = OpenHostile(GetParam().bytes(), [length](ovrant::IXMLInput& reader) {
    if (length == kAnyLength) return;
    ovrant::utils::ovrant_ustring text;
    ASSERT_TRUE(reader.GetElementText("a", text));
    EXPECT_EQ(text.length(), length);
  });
  EXPECT_EQ(opened, GetParam().opens);
}

std::string InA(const std::string& content) { return "<a>" + content + "</a>"; }

// `<a` attributes `/>`.
std::string WithAttributes(const std::string& attributes) { return "<a" + attributes + "/>"; }

INSTANTIATE_TEST_SUITE_P(
    Sizes, XmlHostileTest,
    testing::Values(
        Hostile{"Text", true, [] { return InA(std::string(kHuge, 'x')); }, kHuge},
        Hostile{"TextOfManyLines", true, [] { return InA(Repeated("xxx\n", kHuge / 4) + "x"); },
                kHuge + 1},
        Hostile{"TextOfLineEnds", true, [] { return InA("x" + Repeated("\r\n", kHuge / 2) + "x"); },
                kHuge / 2 + 2},
        Hostile{"WhiteSpace", true, [] { return InA(std::string(kHuge, ' ')); }, 0},
        Hostile{"Section", true, [] { return InA("<![CDATA[" + std::string(kHuge, ']') + "x]]>"); },
                kHuge + 1},
        Hostile{"Comment", true, [] { return InA("<!--" + std::string(kHuge, ' ') + "-->x"); }, 1},
        Hostile{"CommentWithoutEnd", false, [] { return "<a><!--" + std::string(kHuge, ' '); }},
        Hostile{"Instruction", true, [] { return InA("<?p " + std::string(kHuge, '?') + "?>x"); },
                1},
        Hostile{"ElementName", true,
                [] {
                  const std::string name(kHuge / 2, 'x');
                  return "<" + name + "></" + name + ">";
                }},
        Hostile{"AttributeName", true,
                [] { return WithAttributes(" " + std::string(kHuge / 2, 'x') + "=''"); }},
        Hostile{"SpaceInTags", true,
                [] {
                  const std::string space(kHuge, ' ');
                  return "<a" + space + "></a" + space + ">";
                }},
        Hostile{"SpaceAfterTheRoot", true, [] { return "<a/>" + std::string(kHuge, '\n'); }},
        Hostile{"MillionNumericReferences", true, [] { return InA(Repeated("&#x41;", kMillion)); },
                kMillion},
        Hostile{"MillionNamedReferences", true, [] { return InA(Repeated("&amp;", kMillion)); },
                kMillion},
        Hostile{"MillionNumericReferencesInAValue", true,
                [] { return WithAttributes(" n='" + Repeated("&#65;", kMillion) + "'"); }},
        Hostile{"MillionNamedReferencesInAValue", true,
                [] { return WithAttributes(" n='" + Repeated("&lt;", kMillion) + "'"); }},
        Hostile{"ReferenceOfAMillionZeros", true,
                [] { return InA("&#" + std::string(kMillion, '0') + "65;"); }, 1},
        Hostile{"ReferenceOfAMillionDigits", false,
                [] { return InA("&#" + std::string(kMillion, '6') + ";"); }},
        Hostile{"ReferenceOfAMillionHexDigits", false,
                [] { return InA("&#x" + std::string(kMillion, 'F') + ";"); }},
        Hostile{"TextBetweenElements", true, [] { return InA(Repeated("x<b/>", kMillion)); },
                kMillion},
        Hostile{"TextBetweenComments", true, [] { return InA(Repeated("x<!---->", kMillion)); },
                kMillion},
        Hostile{"ManySections", true, [] { return InA(Repeated("<![CDATA[x]]>", kMillion)); },
                kMillion},
        Hostile{"MillionLevels", false,
                [] { return Repeated("<a>", kMillion) + Repeated("</a>", kMillion); }},
        Hostile{"MillionStartTags", false, [] { return Repeated("<a>", kMillion); }},
        Hostile{"MillionValuesWithoutEnd", false, [] { return Repeated("<a n='", kMillion); }},
        Hostile{"TenMillionOpenBrackets", false, [] { return Repeated("<", 10 * kMillion); }},
        Hostile{"DeepAndWide", true,
                [] {
                  const std::string deep = Repeated("<b>", 250) + "x" + Repeated("</b>", 250);
                  return InA(Repeated(deep, 2'000));
                },
                2'000},
        Hostile{"TenMillionEmptyElements", true,
                [] { return InA(Repeated("<b/>", 10 * kMillion)); }, 0},
        Hostile{"MillionEndings", false, [] { return "<a>" + Repeated("</a>", kMillion); }},
        Hostile{"MillionWrongEndings", false, [] { return InA(Repeated("<b></c>", kMillion)); }},
        Hostile{"MillionEndsOfSections", false, [] { return InA(Repeated("]]>", kMillion)); }},
        Hostile{"TextOfPairsInUtf16", true,
                [] {
                  const std::string pair("\x3D\xD8\0\xDE", 4);
                  return std::string("\xFF\xFE<\0a\0>\0", 8) + Repeated(pair, 10 * kMillion) +
                         std::string("<\0/\0a\0>\0", 8);
                },
                20 * kMillion},
        Hostile{"TextThatGrowsInUtf8", true,
                [] {
                  return "<?xml version='1.0' encoding='ISO-8859-1'?>" +
                         InA(std::string(10 * kMillion, '\xE9'));
                },
                10 * kMillion}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Attributes, XmlHostileTest,
    testing::Values(
        Hostile{
            "PrefixedOnOneElement", true,
            [] { return WithAttributes(" xmlns:p='u'" + Numbered(0, kMillion, " p:n", "=''")); }},
        Hostile{"OnTwoElements", true,
                [] {
                  const std::string attributes = Numbered(0, kMillion, " n", "=''");
                  return "<a" + attributes + "><b" + attributes + "/></a>";
                }},
        Hostile{"OneElementOfManyAndManyOfNone", true,
                [] {
                  return InA("<b" + Numbered(0, 300'000, " n", "=''") + "/>" +
                             Repeated("<b/>", kMillion));
                }},
        Hostile{"OneOnEachElement", true, [] { return InA(Repeated("<b n=''/>", kMillion)); }},
        Hostile{"AnotherOnEachElement", true,
                [] { return InA(Numbered(0, kMillion, "<b n", "=''/>")); }}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    Namespaces, XmlHostileTest,
    testing::Values(
        Hostile{"OverlongUriOfManyElements", false,
                [] { return "<a xmlns='" + kLongText + "'>" + Repeated("<b/>", 60'000) + "</a>"; }},
        Hostile{"OverlongUriOfPrefixedNames", false,
                [] {
                  return "<a xmlns:p='" + kLongText + "'>" + Repeated("<p:b p:n=''/>", 60'000) +
                         "</a>";
                }},
        Hostile{"OverlongUriOnEachElement", false,
                [] { return InA(Repeated("<b xmlns='" + kLongText + "'/>", 1'000)); }},
        Hostile{
            "LongPrefixOnManyElements", true,
            [] { return InA(Repeated("<b xmlns:" + std::string(1'000, 'x') + "='u'/>", 10'000)); }},
        Hostile{
            "LongestUriOfElements", true,
            [] { return "<a xmlns='" + kLongestUri + "'>" + Repeated("<b/>", kMillion) + "</a>"; }},
        Hostile{"LongestUriOfDistinctNames", false,
                [] {
                  return "<a xmlns='" + kLongestUri + "'>" + Numbered(0, kMillion, "<b", "/>") +
                         "</a>";
                }},
        Hostile{"LongestUriOfAttributes", true,
                [] {
                  return "<a xmlns:p='" + kLongestUri + "'>" + Repeated("<b p:n=''/>", kMillion) +
                         "</a>";
                }},
        Hostile{"LongestUriOfDistinctAttributes", false,
                [] {
                  return WithAttributes(" xmlns:p='" + kLongestUri + "'" +
                                        Numbered(0, kMillion, " p:n", "=''"));
                }},
        Hostile{"LongestUriOnEachElement", true,
                [] { return InA(Repeated("<b xmlns='" + kLongestUri + "'/>", 100'000)); }},
        Hostile{"ManyDeclarationsOnOneElement", true,
                [] { return WithAttributes(Numbered(0, 10'000, " xmlns:p", "='u'")); }},
        Hostile{"TooManyDeclarationsOnOneElement", false,
                [] { return WithAttributes(Numbered(0, 300'000, " xmlns:p", "='u'")); }},
        Hostile{"ManyUris", true, [] { return InA(Numbered(0, 300'000, "<b xmlns='u", "'/>")); }},
        Hostile{"OnePrefixOnEveryLevel", true,
                [] {
                  return InA(Repeated(Repeated("<p:b xmlns:p='u'>", 200) + Repeated("</p:b>", 200),
                                      1'000));
                }},
        Hostile{"AnElementForEachOfManyDeclarations", true,
                [] {
                  return "<a" + Numbered(0, 100'000, " xmlns:p", "='u'") + ">" +
                         Numbered(0, 100'000, "<p", ":b/>") + "</a>";
                }}),
    RowName());

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

std::string DoublingParameterEntities() {
  std::string declarations = "<!ENTITY % e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    const std::string before = "&#37;e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY % d" + number + " \"<!ENTITY &#37; e" + number + " '" + before +
                    before + "'>\">%d" + number + ";";
  }
  return declarations;
}

std::string References() { return Repeated("&e;", 60'000); }

// An attribute list for the elements of a list.
std::string WithList(const std::string& list, std::size_t elements) {
  return WithDeclarations("<!ATTLIST b " + list + ">", InA(Repeated("<b/>", elements)));
}

INSTANTIATE_TEST_SUITE_P(
    Declarations, XmlHostileTest,
    testing::Values(
        Hostile{"BillionLaughs", false,
                [] { return WithDeclarations(Tower(9, 10, "lol"), "<a>&e9;</a>"); }},
        Hostile{"BillionEmptyTexts", false,
                [] { return WithDeclarations(Tower(9, 10, ""), "<a>&e9;</a>"); }},
        Hostile{"BillionElements", false,
                [] { return WithDeclarations(Tower(9, 10, "<b/>"), "<a>&e9;</a>"); }},
        Hostile{"BillionLaughsInAValue", false,
                [] { return WithDeclarations(Tower(9, 10, "lol"), "<a n='&e9;'/>"); }},
        Hostile{"BillionLaughsAfterAParameterEntity", false,
                [] { return WithDeclarations("%p;" + Tower(9, 10, "lol"), "<a>&e9;</a>"); }},
        Hostile{"QuadraticText", false,
                [] { return WithDeclarations(Entity("e", kLongText), InA(References())); }},
        Hostile{"QuadraticValue", false,
                [] {
                  return WithDeclarations(Entity("e", kLongText), "<a n='" + References() + "'/>");
                }},
        Hostile{"QuadraticDefault", false,
                [] {
                  return WithDeclarations(
                      Entity("e", kLongText) + "<!ATTLIST a n CDATA '" + References() + "'>",
                      "<a/>");
                }},
        Hostile{"ChainOfEntities", false,
                [] { return WithDeclarations(Tower(100'000, 1, "x"), "<a>&e100000;</a>"); }},
        Hostile{"ChainOfEntitiesInAValue", false,
                [] { return WithDeclarations(Tower(100'000, 1, "x"), "<a n='&e100000;'/>"); }},
        Hostile{"ChainAfterAParameterEntity", false,
                [] { return WithDeclarations("%p;" + Tower(100'000, 1, "x"), "<a/>"); }},
        // The parser keeps the text before the reader can refuse it.
        Hostile{"HugeEntity", false,
                [] { return WithDeclarations(Entity("e", std::string(kHuge, 'x')), "<a/>"); }},
        Hostile{"HugeParameterEntity", false,
                [] { return WithDeclarations(Entity("% p", std::string(kHuge, 'x')), "<a/>"); }},
        Hostile{"DoublingParameterEntities", false,
                [] { return WithDeclarations(DoublingParameterEntities(), "<a/>"); }},
        // The parser would look through the whole list at each attribute.
        Hostile{"ListOfTokensAndManyAttributes", false,
                [] {
                  const std::string element = "<b" + Numbered(16'000, 17'000, " n", "=' '") + "/>";
                  return WithDeclarations(
                      "<!ATTLIST b " + Numbered(0, 17'000, " n", " NMTOKEN #IMPLIED") + ">",
                      InA(Repeated(element, 870)));
                }},
        Hostile{"DefaultOnManyElements", false,
                [] { return WithList("n CDATA '" + kLongText + "'", 60'000); }},
        Hostile{"DefaultNamespaceOnManyElements", false,
                [] { return WithList("xmlns CDATA '" + kLongText + "'", 60'000); }},
        Hostile{"DefaultPrefixOnManyElements", false,
                [] { return WithList("xmlns:p CDATA '" + kLongText + "'", 60'000); }},
        Hostile{"LongDefaultNameOnManyElements", false,
                [] { return WithList(kLongText + " CDATA ''", 60'000); }},
        Hostile{"ManyDefaultsOnManyElements", false,
                [] { return WithList(Numbered(0, 100'000, " n", " CDATA ''"), 500'000); }},
        Hostile{"ManyOptionalOnManyElements", false,
                [] { return WithList(Numbered(0, 100'000, " n", " CDATA #IMPLIED"), 500'000); }},
        Hostile{"ManyRequiredOnManyElements", false,
                [] { return WithList(Numbered(0, 100'000, " n", " CDATA #REQUIRED"), 500'000); }},
        Hostile{"EnumerationOfAMillion", false,
                [] {
                  return WithDeclarations(
                      "<!ATTLIST a n (" + Repeated("x|", kMillion) + "y) #IMPLIED>", "<a n='x'/>");
                }},
        Hostile{"ManyEmptyAttributeLists", true,
                [] { return WithDeclarations(Numbered(0, 300'000, "<!ATTLIST n", ">"), "<a/>"); }},
        Hostile{"DeepContentModel", true,
                [] {
                  return WithDeclarations("<!ELEMENT a " + Repeated("(", kMillion) + "b" +
                                              Repeated(")", kMillion) + ">",
                                          "<a/>");
                }},
        Hostile{"WideContentModel", true,
                [] {
                  return WithDeclarations("<!ELEMENT a (" + Repeated("b,", kMillion) + "b)>",
                                          "<a/>");
                }},
        Hostile{"ManyElementDeclarations", true,
                [] {
                  return WithDeclarations(Numbered(0, 100'000, "<!ELEMENT n", " EMPTY>"), "<a/>");
                }},
        Hostile{"ManyNotations", true,
                [] {
                  return WithDeclarations(
                      Numbered(0, 100'000, "<!NOTATION n", " SYSTEM 'somewhere'>"), "<a/>");
                }},
        Hostile{"HugeIdentifiers", true,
                [] {
                  const std::string id(10 * kMillion, 'x');
                  return "<!DOCTYPE a PUBLIC '" + id + "' '" + id + "'><a/>";
                }},
        Hostile{"HugeIdentifierOfANotation", true,
                [] {
                  return WithDeclarations(
                      "<!NOTATION n PUBLIC '" + std::string(10 * kMillion, 'x') + "'>", "<a/>");
                }},
        Hostile{"DeclarationsWithoutEnd", false,
                [] { return "<!DOCTYPE a [" + Repeated("<!ELEMENT a ANY>[", 100'000); }},
        Hostile{"DoctypesWithoutEnd", false, [] { return Repeated("<!DOCTYPE a [", 100'000); }},
        Hostile{"SubsetsWithoutEnd", false,
                [] { return "<!DOCTYPE a " + Repeated("[", kMillion); }},
        Hostile{"SectionsWithoutEnd", false,
                [] { return "<!DOCTYPE a [" + Repeated("<![INCLUDE[", 100'000); }}),
    RowName());

// With an external subset each start tag is looked at once more.
std::string External(const std::string& root) { return "<!DOCTYPE a SYSTEM 'x'>" + root; }

INSTANTIATE_TEST_SUITE_P(
    ExternalSubset, XmlHostileTest,
    testing::Values(
        Hostile{"ManyAttributes", true,
                [] { return External(WithAttributes(Numbered(0, kMillion, " n", "='&lt;'"))); }},
        Hostile{"ManyReferences", true,
                [] { return External("<a n='" + Repeated("&lt;", 5 * kMillion) + "'/>"); }},
        Hostile{"ManyStartTags", true,
                [] { return External(InA(Repeated("<b n='&lt;'/>", kMillion))); }},
        Hostile{"UnknownReferenceAfterMany", false,
                [] { return External("<a n='" + Repeated("&lt;", 5 * kMillion) + "&e;'/>"); }}),
    RowName());

TEST(XmlHostileValueTest, ReadsAHugeAttribute) {
  EXPECT_TRUE(
      OpenHostile("<a n='" + std::string(kHuge, 'x') + "'/>", [](ovrant::IXMLInput& reader) {
        ovrant::utils::ovrant_ustring value;
        ASSERT_TRUE(reader.FindElement("a"));
        ASSERT_TRUE(reader.GetAttribute("n", value));
        EXPECT_EQ(value.length(), kHuge);
      }));
}

TEST(XmlHostileValueTest, ReadsTheLastOfAMillionAttributes) {
  const std::string bytes = WithAttributes(Numbered(0, kMillion, " n", "=''"));
  EXPECT_TRUE(OpenHostile(bytes, [](ovrant::IXMLInput& reader) {
    ovrant::utils::ovrant_ustring value = "before";
    ASSERT_TRUE(reader.FindElement("a"));
    EXPECT_TRUE(reader.GetAttribute("n999999", value));
    EXPECT_EQ(value, "");
    EXPECT_FALSE(reader.GetAttribute("n1000000", value));
  }));
}

}  // namespace
}  // namespace stowra_test
