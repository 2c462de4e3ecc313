// SPDX-License-Identifier: MIT
// Documents whose parts are long, deep or many, or whose declarations would cost more than their
// size.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

constexpr int kHuge = 100'000'000;
constexpr int kMillion = 1'000'000;
constexpr int kAnyLength = -1;

// Expects the text of the root element `a` to have that many code units.
std::function<void(ovrant::IXMLInput& reader)> HasTextOf(int length) {
  if (length == kAnyLength) return nullptr;
  return [length](ovrant::IXMLInput& reader) {
    ovrant::utils::ovrant_ustring text;
    ASSERT_TRUE(reader.GetElementText("a", text));
    EXPECT_EQ(text.length(), static_cast<unsigned long>(length));
  };
}

// A piece that is repeated between two others. "@" stands for its number, from 0.
struct Repetition {
  const char* name;
  bool opens;
  std::string before;
  std::string piece;
  int count;
  std::string after;
  int length = kAnyLength;
};

void PrintTo(const Repetition& repetition, std::ostream* out) { *out << repetition.name; }

class XmlHostileTest : public testing::TestWithParam<Repetition> {};

TEST_P(XmlHostileTest, CostsNoMoreThanItsSize) {
  const auto& [name, opens, before, piece, count, after, length] = GetParam();
  const std::size_t number = piece.find('@');
  const std::string repeated =
      number == std::string::npos
          ? Repeated(piece, static_cast<std::size_t>(count))
          : Numbered(0, count, piece.substr(0, number), piece.substr(number + 1));
  EXPECT_EQ(OpenHostile(before + repeated + after, HasTextOf(length)), opens);
}

const std::string kPair("\x3D\xD8\0\xDE", 4);
const std::string kOpenInUtf16("\xFF\xFE<\0a\0>\0", 8);
const std::string kCloseInUtf16("<\0/\0a\0>\0", 8);
const std::string kDeepElement = Repeated("<b>", 250) + "x" + Repeated("</b>", 250);

const Repetition kSizes[] = {
    {"Text", true, "<a>", "x", kHuge, "</a>", kHuge},
    {"TextOfManyLines", true, "<a>", "xxx\n", kHuge / 4, "x</a>", kHuge + 1},
    {"TextOfLineEnds", true, "<a>x", "\r\n", kHuge / 2, "x</a>", kHuge / 2 + 2},
    {"WhiteSpace", true, "<a>", " ", kHuge, "</a>", 0},
    {"Section", true, "<a><![CDATA[", "]", kHuge, "x]]></a>", kHuge + 1},
    {"Comment", true, "<a><!--", " ", kHuge, "-->x</a>", 1},
    {"CommentWithoutEnd", false, "<a><!--", " ", kHuge, ""},
    {"Instruction", true, "<a><?p ", "?", kHuge, "?>x</a>", 1},
    {"ElementName", true, "<", "x", kHuge, "/>"},
    {"AttributeName", true, "<a ", "x", kHuge / 2, "=''/>"},
    {"SpaceInStartTag", true, "<a", " ", kHuge, "></a>"},
    {"SpaceInEndTag", true, "<a></a", " ", kHuge, ">"},
    {"SpaceAfterTheRoot", true, "<a/>", "\n", kHuge, ""},
    {"NumericReferences", true, "<a>", "&#x41;", kMillion, "</a>", kMillion},
    {"NamedReferences", true, "<a>", "&amp;", kMillion, "</a>", kMillion},
    {"NumericReferencesInAValue", true, "<a n='", "&#65;", kMillion, "'/>"},
    {"NamedReferencesInAValue", true, "<a n='", "&lt;", kMillion, "'/>"},
    {"ReferenceOfManyZeros", true, "<a>&#", "0", kMillion, "65;</a>", 1},
    {"ReferenceOfManyDigits", false, "<a>&#", "6", kMillion, ";</a>"},
    {"ReferenceOfManyHexDigits", false, "<a>&#x", "F", kMillion, ";</a>"},
    {"TextBetweenElements", true, "<a>", "x<b/>", kMillion, "</a>", kMillion},
    {"TextBetweenComments", true, "<a>", "x<!---->", kMillion, "</a>", kMillion},
    {"ManySections", true, "<a>", "<![CDATA[x]]>", kMillion, "</a>", kMillion},
    {"StartTags", false, "", "<a>", kMillion, ""},
    {"ValuesWithoutEnd", false, "", "<a n='", kMillion, ""},
    {"OpenBrackets", false, "", "<", 10 * kMillion, ""},
    {"DeepAndWide", true, "<a>", kDeepElement, 2'000, "</a>", 2'000},
    {"EmptyElements", true, "<a>", "<b/>", 10 * kMillion, "</a>", 0},
    {"EndTags", false, "<a>", "</a>", kMillion, ""},
    {"WrongEndTags", false, "<a>", "<b></c>", kMillion, "</a>"},
    {"EndsOfSections", false, "<a>", "]]>", kMillion, "</a>"},
    {"TextOfPairsInUtf16", true, kOpenInUtf16, kPair, 10 * kMillion, kCloseInUtf16, 20 * kMillion},
    {"TextThatGrowsInUtf8", true, "<?xml version='1.0' encoding='ISO-8859-1'?><a>", "\xE9",
     10 * kMillion, "</a>", 10 * kMillion},
};
INSTANTIATE_TEST_SUITE_P(Sizes, XmlHostileTest, testing::ValuesIn(kSizes), RowName());

const std::string kLongText(60'000, 'x');
const std::string kThousand(1'000, 'x');

// As long as the URI of a namespace may be.
const std::string kLongestUri(256, 'u');

const Repetition kAttributes[] = {
    {"Prefixed", true, "<a xmlns:p='u'", " p:n@=''", kMillion, "/>"},
    {"OneOnEachElement", true, "<a>", "<b n=''/>", kMillion, "</a>"},
    {"AnotherOnEachElement", true, "<a>", "<b n@=''/>", kMillion, "</a>"},
};
INSTANTIATE_TEST_SUITE_P(Attributes, XmlHostileTest, testing::ValuesIn(kAttributes), RowName());

const std::string kInLongest = "<a xmlns='" + kLongestUri + "'>";
const std::string kWithLongest = "<a xmlns:p='" + kLongestUri + "'";
const std::string kOneLevel = Repeated("<p:b xmlns:p='u'>", 200) + Repeated("</p:b>", 200);

const Repetition kNamespaces[] = {
    {"OverlongUriOfManyElements", false, "<a xmlns='" + kLongText + "'>", "<b/>", 60'000, "</a>"},
    {"OverlongUriOfPrefixedNames", false, "<a xmlns:p='" + kLongText + "'>", "<p:b p:n=''/>",
     60'000, "</a>"},
    {"OverlongUriOnEachElement", false, "<a>", "<b xmlns='" + kLongText + "'/>", 1'000, "</a>"},
    {"LongPrefixOnManyElements", true, "<a>", "<b xmlns:" + kThousand + "='u'/>", 10'000, "</a>"},
    {"LongestUriOfElements", true, kInLongest, "<b/>", kMillion, "</a>"},
    {"LongestUriOfDistinctNames", false, kInLongest, "<b@/>", kMillion, "</a>"},
    {"LongestUriOfAttributes", true, kWithLongest + ">", "<b p:n=''/>", kMillion, "</a>"},
    {"LongestUriOfDistinctAttributes", false, kWithLongest, " p:n@=''", kMillion, "/>"},
    {"LongestUriOnEachElement", true, "<a>", "<b xmlns='" + kLongestUri + "'/>", 100'000, "</a>"},
    {"ManyDeclarationsOnOneElement", true, "<a", " xmlns:p@='u'", 10'000, "/>"},
    {"TooManyDeclarationsOnOneElement", false, "<a", " xmlns:p@='u'", 300'000, "/>"},
    {"ManyUris", true, "<a>", "<b xmlns='u@'/>", 300'000, "</a>"},
    {"OnePrefixOnEveryLevel", true, "<a>", kOneLevel, 1'000, "</a>"},
};
INSTANTIATE_TEST_SUITE_P(Namespaces, XmlHostileTest, testing::ValuesIn(kNamespaces), RowName());

const std::string kSubset = "<!DOCTYPE a [";
const std::string kRoot = "]><a/>";

// With an external subset each start tag is looked at once more.
const std::string kExternal = "<!DOCTYPE a SYSTEM 'x'>";

const Repetition kDeclarations[] = {
    {"HugeEntity", false, kSubset + "<!ENTITY e '", "x", kHuge, "'>" + kRoot},
    {"HugeParameterEntity", false, kSubset + "<!ENTITY % p '", "x", 10 * kMillion, "'>" + kRoot},
    {"Enumeration", false, kSubset + "<!ATTLIST a n (", "x|", kMillion, "y) #IMPLIED>]><a n='x'/>"},
    {"EmptyAttributeLists", true, kSubset, "<!ATTLIST n@>", 300'000, kRoot},
    {"WideContentModel", true, kSubset + "<!ELEMENT a (", "b,", kMillion, "b)>" + kRoot},
    {"ElementDeclarations", true, kSubset, "<!ELEMENT n@ EMPTY>", 100'000, kRoot},
    {"Notations", true, kSubset, "<!NOTATION n@ SYSTEM 'x'>", 100'000, kRoot},
    {"HugePublicIdentifier", true, "<!DOCTYPE a PUBLIC '", "x", 10 * kMillion, "' 'y'><a/>"},
    {"HugeSystemIdentifier", true, "<!DOCTYPE a PUBLIC 'y' '", "x", 10 * kMillion, "'><a/>"},
    {"HugeIdentifierOfANotation", true, kSubset + "<!NOTATION n PUBLIC '", "x", 10 * kMillion,
     "'>" + kRoot},
    {"DeclarationsWithoutEnd", false, kSubset, "<!ELEMENT a ANY>[", 100'000, ""},
    {"DoctypesWithoutEnd", false, "", "<!DOCTYPE a [", 100'000, ""},
    {"SubsetsWithoutEnd", false, "<!DOCTYPE a ", "[", kMillion, ""},
    {"SectionsWithoutEnd", false, kSubset, "<![INCLUDE[", 100'000, ""},
    {"ExternalAndManyAttributes", true, kExternal + "<a", " n@='&lt;'", kMillion, "/>"},
    {"ExternalAndManyReferences", true, kExternal + "<a n='", "&lt;", 5 * kMillion, "'/>"},
    {"ExternalAndManyStartTags", true, kExternal + "<a>", "<b n='&lt;'/>", kMillion, "</a>"},
    {"ExternalAndUnknownReference", false, kExternal + "<a n='", "&lt;", 5 * kMillion, "&e;'/>"},
};
INSTANTIATE_TEST_SUITE_P(Declarations, XmlHostileTest, testing::ValuesIn(kDeclarations), RowName());

std::string Levels(const std::string& open, const std::string& inside, const std::string& close) {
  return Repeated(open, kMillion) + inside + Repeated(close, kMillion);
}

TEST(XmlHostileNameTest, MayBeLongInBothTags) {
  const std::string name(kHuge / 2, 'x');
  EXPECT_TRUE(OpenHostile("<" + name + "></" + name + ">"));
}

TEST(XmlHostileNestingTest, IsRefusedAndIsHarmlessInContentModels) {
  EXPECT_FALSE(OpenHostile(Levels("<a>", "", "</a>")));
  EXPECT_TRUE(OpenHostile(kSubset + "<!ELEMENT a " + Levels("(", "b", ")") + ">" + kRoot));
}

TEST(XmlHostileAttributesTest, AreReadOnTwoElementsAndInALargeValue) {
  const std::string attributes = Numbered(0, kMillion, " n", "=''");
  EXPECT_TRUE(
      OpenHostile("<a" + attributes + "><b" + attributes + "/></a>", [](ovrant::IXMLInput& reader) {
        ovrant::utils::ovrant_ustring value = "before";
        ASSERT_TRUE(reader.FindElement("a"));
        EXPECT_TRUE(reader.GetAttribute("n999999", value));
        EXPECT_EQ(value, "");
        EXPECT_FALSE(reader.GetAttribute("n1000000", value));
      }));
  EXPECT_TRUE(
      OpenHostile("<a n='" + std::string(kHuge, 'x') + "'/>", [](ovrant::IXMLInput& reader) {
        ovrant::utils::ovrant_ustring value;
        ASSERT_TRUE(reader.FindElement("a"));
        ASSERT_TRUE(reader.GetAttribute("n", value));
        EXPECT_EQ(value.length(), static_cast<unsigned long>(kHuge));
      }));
}

TEST(XmlHostileAttributesTest, ManyOnOneElementAndNoneOnManyOthers) {
  EXPECT_TRUE(OpenHostile("<a><b" + Numbered(0, 300'000, " n", "=''") + "/>" +
                          Repeated("<b/>", kMillion) + "</a>"));
}

TEST(XmlHostileNamespacesTest, AnElementForEachOfManyDeclarations) {
  EXPECT_TRUE(OpenHostile("<a" + Numbered(0, 100'000, " xmlns:p", "='u'") + ">" +
                          Numbered(0, 100'000, "<p", ":b/>") + "</a>"));
}

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

void ExpectRefused(const std::string& declarations, const std::string& content) {
  EXPECT_FALSE(OpenHostile(kSubset + declarations + "]>" + content));
}

TEST(XmlHostileEntityTest, BillionLaughs) {
  for (const std::string ground : {"lol", "", "<b/>"}) {
    ExpectRefused(Tower(9, 10, ground), "<a>&e9;</a>");
    ExpectRefused(Tower(9, 10, ground), "<a n='&e9;'/>");
  }
  ExpectRefused("%p;" + Tower(9, 10, "lol"), "<a>&e9;</a>");
}

TEST(XmlHostileEntityTest, QuadraticGrowth) {
  const std::string references = Repeated("&e;", 60'000);
  const std::string entity = Entity("e", kLongText);
  ExpectRefused(entity, "<a>" + references + "</a>");
  ExpectRefused(entity, "<a n='" + references + "'/>");
  ExpectRefused(entity + "<!ATTLIST a n CDATA '" + references + "'>", "<a/>");
}

TEST(XmlHostileEntityTest, AChainOf100000) {
  const std::string chain = Tower(100'000, 1, "x");
  ExpectRefused(chain, "<a>&e100000;</a>");
  ExpectRefused(chain, "<a n='&e100000;'/>");
  ExpectRefused("%p;" + chain, "<a/>");
}

TEST(XmlHostileEntityTest, DoublingParameterEntities) {
  std::string declarations = "<!ENTITY % e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    const std::string before = "&#37;e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY % d" + number + " \"<!ENTITY &#37; e" + number + " '" + before +
                    before + "'>\">%d" + number + ";";
  }
  ExpectRefused(declarations, "<a/>");
}

// The parser would look through the whole list at each attribute.
TEST(XmlHostileAttributeListTest, AListOfTokensAndManyAttributes) {
  const std::string element = "<b" + Numbered(16'000, 17'000, " n", "=' '") + "/>";
  ExpectRefused("<!ATTLIST b " + Numbered(0, 17'000, " n", " NMTOKEN #IMPLIED") + ">",
                "<a>" + Repeated(element, 870) + "</a>");
}

TEST(XmlHostileAttributeListTest, LongOrManyOnManyElements) {
  const std::string elements = "<a>" + Repeated("<b/>", 60'000) + "</a>";
  for (const std::string name : {"n", "xmlns", "xmlns:p"}) {
    ExpectRefused("<!ATTLIST b " + name + " CDATA '" + kLongText + "'>", elements);
  }
  ExpectRefused("<!ATTLIST b " + kLongText + " CDATA ''>", elements);
  const std::string more_elements = "<a>" + Repeated("<b/>", 500'000) + "</a>";
  for (const std::string rest : {" CDATA ''", " CDATA #IMPLIED", " CDATA #REQUIRED"}) {
    ExpectRefused("<!ATTLIST b" + Numbered(0, 100'000, " n", rest) + ">", more_elements);
  }
}

}  // namespace
}  // namespace stowra_test
