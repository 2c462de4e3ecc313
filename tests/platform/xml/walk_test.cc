// SPDX-License-Identifier: MIT
// Moving about, and names with and without namespaces.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

// A document, and steps through it, separated by " | ". A step with "!" must fail.
//
//   +NAME        !+NAME   FindElement
//   >NAME        !>NAME   NextElement
//   -NAME        !-NAME   LeaveElement
//   @NAME=VALUE  !@NAME   GetAttribute
//   .NAME=VALUE  !.NAME   GetElementText
//   #NAME=VALUE  !#NAME   GetElementInt
//   ?NAME=VALUE  !?NAME   GetElementBool, which gives 0 or 1
struct Walk {
  const char* name;
  std::string document;
  std::string steps;
};

// The part behind the last "=", since names may be URIs.
std::string TakeValue(std::string& step) {
  const std::size_t equals = step.rfind('=');
  const std::string value = step.substr(equals + 1);
  step.erase(equals);
  return value;
}

void TakeStep(XmlDocument& document, std::string step) {
  SCOPED_TRACE(step);
  const bool succeeds = step[0] != '!';
  if (!succeeds) step.erase(0, 1);
  const char operation = step[0];
  const bool moves = operation == '+' || operation == '>' || operation == '-';
  const std::string value = succeeds && !moves ? TakeValue(step) : "";
  const std::string name = step.substr(1);
  std::optional<std::string> found;
  if (operation == '@') found = document.Attribute(name);
  if (operation == '.') found = document.Text(name);
  if (operation == '#') {
    if (const auto number = document.Int(name)) found = std::to_string(*number);
  }
  if (operation == '?') {
    if (const auto flag = document.Bool(name)) found = *flag ? "1" : "0";
  }
  if ((operation == '+' && document.Find(name)) || (operation == '>' && document.Next(name)) ||
      (operation == '-' && document.Leave(name))) {
    found = "";
  }
  EXPECT_EQ(found, succeeds ? std::optional(value) : std::nullopt);
}

void TakeWalks(const std::vector<Walk>& walks) {
  for (const Walk& walk : walks) {
    SCOPED_TRACE(walk.name);
    OpenDocument document(walk.document);
    for (std::size_t begin = 0; begin != std::string::npos;) {
      const std::size_t end = walk.steps.find(" | ", begin);
      TakeStep(document, walk.steps.substr(begin, end - begin));
      begin = end == std::string::npos ? end : end + 3;
    }
  }
}

TEST(XmlWalkTest, MovesAmongElements) {
  TakeWalks({
      {"StandsAtTheDocumentFirst", "<a b='1'><c/></a>",
       "!@b | !.c | !>a | !-a | !- | !+c | +a | @b=1"},
      {"WalksAListInTheUsualPattern", "<list><item>1</item><item>2</item><item>3</item></list>",
       "+list | +item | >item | >item | !>item | -item | .item=1 | -list | .list=123"},
      {"ReadsWhatEachElementOfAListHolds",
       "<list><item id='x'><name>one</name></item><item id='y'><name>two</name>"
       "<part n='1'/><part n='2'/></item></list>",
       "+list | +item | @id=x | .name=one | !+part | >item | @id=y | .name=two | +part | "
       "@n=1 | >part | @n=2 | !>part | -part | @id=y | !>item | -item | -list"},
      {"StaysAtTheLastOfAListAfterItsEnd", "<r><i n='1'/><other/><i n='2'/><other/></r>",
       "+r | +i | >i | !>i | @n=2 | !>i | @n=2 | !>i | @n=2 | -i | !@n | +other"},
      {"FindElementTakesTheFirst", "<r>text<x/><i n='1'/><i n='2'/></r>",
       "+r | +i | @n=1 | >i | @n=2 | -i | +i | @n=1 | >i | @n=2 | -i | +i | @n=1"},
      {"FindElementLooksAtChildrenOnly",
       "<r id='r'><x><deep id='1'/></x><deep id='2'/><x><only/></x></r>",
       "!+x | !+deep | +r | !+r | !+only | @id=r | +deep | @id=2"},
      {"NextElementLooksAtLaterSiblingsOnly", "<r><n/><i><n/><i/></i><x><n/></x></r>",
       "+r | +i | !>n | !>i | !>r | >x"},
      {"NextElementMayGoToAnotherName", "<r><a n='1'/><b n='2'/><a n='3'/><b n='4'/></r>",
       "+r | +a | >b | @n=2 | >b | @n=4 | !>a | !-a | -b"},
      {"LeaveElementWantsTheNameOfTheCurrentElement", "<r><i n='1'><r/></i></r>",
       "+r | +i | !-r | @n=1 | !-I | @n=1 | !- | @n=1 | !-i  | @n=1 | !-none | @n=1 | -i"},
      {"LeavingTheRootLeadsToTheDocument", "<r n='1'><i/></r>",
       "+r | !>r | -r | !@n | !-r | !+i | +r | !>r | -r | !@n | !-r | !+i | +r"},
      {"ListsMayLieAmongEachOther", "<r><a n='1'/><b n='2'/><a n='3'/><c/><b n='4'/><a n='5'/></r>",
       "+r | +b | @n=2 | >b | @n=4 | !>b | -b | +a | @n=1 | >a | @n=3 | >a | @n=5 | !>a | "
       "-a | +b | @n=2 | >b | @n=4 | !>b | -b"},
      {"AskingForTextsDoesNotMove",
       "<r n='0'><i n='1'><v>1</v></i><i n='2'><v>x</v><v>2</v></i></r>",
       "+r | +i | #v=1 | @n=1 | >i | !#v | !?v | .v=x | @n=2"},
      {"NamesMatchExactly", "<Name><na.me-_1\xC3\xA9/><\xC3\x89l\xE4\xB8\x80/></Name>",
       "!+name | !+NAME | !+Nam | !+Names | !+ Name | !+Name  | !+ | !+:Name | +Name | "
       "!+na.me-_1e | !+na.me-_1\xC3\x89 | !+na.me-_1e\xCC\x81 | !+na.me-_1 | "
       "+na.me-_1\xC3\xA9 | >\xC3\x89l\xE4\xB8\x80"},
      {"ANameEndsOnlyWhereItEnds", "<a><b/></a>",
       std::string("!+a\0 | !+a\0b | +a | !-a\0 | !.b\0", 31)},
  });
}

TEST(XmlWalkTest, GivesAttributesOfTheCurrentElement) {
  TakeWalks({
      {"EachByItsName", "<a one='1' two=\"2\" three='' four=' '><b one='5'/></a>",
       "+a | @two=2 | @one=1 | @three= | @four=  | !@five | !@One | !@on | !@ones | !@ | "
       "!@:one | !@a | !@b | +b | @one=5 | !@two"},
      {"OfTheCurrentElement", "<a n='a'><b/><b n='b'/><b/></a>",
       "+a | +b | !@n | >b | @n=b | >b | !@n | -b | @n=a"},
      {"PrefixedIsAnother", "<a xmlns:p='urn:p' p:href='p' xml:lang='en'/>",
       "+a | !@href | !@lang"},
      {"PrefixedComesFirst", "<a xmlns:p='urn:p' p:href='p' href='plain'/>", "+a | @href=plain"},
      {"PrefixedComesLast", "<a xmlns:p='urn:p' href='plain' p:href='p'/>", "+a | @href=plain"},
      {"WithoutAPrefixIsInNoNamespace", "<a xmlns='urn:x' n='1'/>", "+urn:x:a | @n=1"},
      {"NamespaceDeclarationsAreNone", "<a xmlns:p='urn:p' n='1'/>", "+a | !@xmlns | !@p | @n=1"},
      {"ReferencesAreDecoded",
       "<a n='&lt;&amp;&gt;&quot;&apos;\">' m='&#65;&#x42;&#x1F600;\xC3\xA9'/>",
       "+a | @n=<&>\"'\"> | @m=AB\xF0\x9F\x98\x80\xC3\xA9"},
      {"WhiteSpaceIsKeptAsSpacesAndReferencesAsTheyAre", "<a n=' x\ty\nz\r\n.\r '/>",
       "+a | @n= x y z .  "},
      {"ReferencesToWhiteSpaceAreKept", "<a n='&#9;&#10;&#13;&#32;'/>", "+a | @n=\t\n\r "},
  });
}

TEST(XmlWalkTest, TellsNamespacesApart) {
  TakeWalks({
      {"ADefaultHoldsForWhatLiesInside", "<a xmlns='http://host/x'><b>1</b></a>",
       "!+a | !+:a | !+http://host/xa | !+http://host/x/:a | !+HTTP://host/x:a | "
       "!+http://host/x: | !+http://host/x: a | !+http://host/x::a | +http://host/x:a | "
       ".http://host/x:b=1 | !.b | !-a | -http://host/x:a"},
      {"WithoutOneTheNameIsTheLocalName", "<a><b>1</b></a>", "!+:a | +a | .b=1"},
      {"ThePrefixDoesNotMatter",
       "<p:a xmlns:p='urn:x'><q:b xmlns:q='urn:x'>1</q:b><b xmlns='urn:x'>2</b><p:b>3</p:b>"
       "<b>4</b></p:a>",
       "!+p:a | +urn:x:a | .b=4 | !.p:b | +urn:x:b | >urn:x:b | >urn:x:b | !>urn:x:b | >b"},
      {"SameLocalNamesAreToldApart",
       "<feed xmlns='urn:f' xmlns:m='urn:m'><m:title>media</m:title>"
       "<title xmlns=''>none</title><title>feed</title></feed>",
       "+urn:f:feed | .urn:f:title=feed | .urn:m:title=media | .title=none"},
      {"DeclarationsMayBeReplacedAndTakenBack",
       "<a xmlns='urn:1' xmlns:p='urn:p'><b xmlns='urn:2' xmlns:p='urn:q'><c/><p:c/></b>"
       "<b xmlns=''><c/></b><p:b/><b/></a>",
       "+urn:1:a | +urn:2:b | .urn:2:c= | .urn:q:c= | !.urn:p:c | !.urn:1:c | -urn:2:b | +b "
       "| .c= | -b | +urn:p:b | >urn:1:b"},
      {"HoldForTheElementThatDeclaresThem", "<a><p:b xmlns:p='urn:x'/><b xmlns='urn:y'/></a>",
       "+a | .urn:x:b= | .urn:y:b= | !.b"},
      {"TheUriIsTakenAsWritten", "<a xmlns='HTTP://h/%7e a&amp;b?c:d#&#x65;/../ '/>",
       "+HTTP://h/%7e a&b?c:d#e/../ :a"},
      {"TheUriMayHaveAnyCharacter", "<a xmlns='\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80'><b/></a>",
       "+\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80:a | .\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80:b="},
      {"TheXmlPrefixNeedsNoDeclaration", "<xml:a/>", "+http://www.w3.org/XML/1998/namespace:a"},
      {"OpensAFeedOfSeveral",
       "<feed xmlns='http://www.w3.org/2005/Atom'"
       " xmlns:os='http://a9.com/-/spec/opensearchrss/1.0/'"
       " xmlns:media='http://search.yahoo.com/mrss/'><os:totalResults>12</os:totalResults>"
       "<entry><title>T</title><media:group><media:content url='u'/></media:group></entry>"
       "</feed>",
       "+http://www.w3.org/2005/Atom:feed | "
       "#http://a9.com/-/spec/opensearchrss/1.0/:totalResults=12 | "
       "+http://www.w3.org/2005/Atom:entry | .http://www.w3.org/2005/Atom:title=T | "
       "+http://search.yahoo.com/mrss/:group | +http://search.yahoo.com/mrss/:content | "
       "@url=u"},
  });
}

TEST(XmlWalkTest, GivesTextsOfChildren) {
  TakeWalks({
      {"OfTheFirstChildOfTheName", "<r>0<x>x</x><t>1</t><t>2</t></r>", "+r | .t=1 | .x=x"},
      {"ADescendantIsNoChild", "<r><x><t>1</t></x></r>", "!.x | +r | !.t | !.r"},
      {"EndsWithItsElement", "<r>0<a>1</a>2<b>3</b>4<c/>5</r>",
       ".r=012345 | +r | .a=1 | .b=3 | .c="},
      {"WordsOfNestedElementsInTheirPlaces",
       "<r><t> A <i>title <b>of</b></i> <u/>words </t><t>B</t></r>",
       "+r | .t=A title of words | +t | .i=title of | +i | .b=of"},
      {"AMissingNumberIsAbsent", "<a><b><n>1</n></b></a>", "!#n | +a | !#n | #b=1"},
      {"AMissingFlagIsAbsent", "<a><b><n>true</n></b></a>", "!?n | +a | !?n | ?b=1"},
  });
}

TEST(XmlListTest, ChildrenAreFoundInAnyOrder) {
  const std::vector<std::string> names = {"one", "two", "three", "four"};
  OpenDocument document(
      "<r>text<junk/><one>1</one><!-- two --><junk>x</junk><two>2</two><![CDATA[<four/>]]>"
      "<three>3</three><?four?><junk/><four>4</four>&lt;one/></r>",
      "r");
  for (std::size_t first = 0; first < names.size(); ++first) {
    for (const std::string& second : names) {
      EXPECT_EQ(document.Text(names[first]), std::to_string(first + 1));
      ASSERT_TRUE(document.Find(second));
      ASSERT_TRUE(document.Leave(second));
      EXPECT_EQ(document.Int(names[first]), static_cast<int>(first + 1));
    }
  }
}

TEST(XmlListTest, ListsOfAnyLengthAreWalkedToTheirEnd) {
  for (const int length : {1, 2, 10, 63, 64, 65, 100, 1000}) {
    OpenDocument document("<r>" + Numbered(0, length, "<a n='", "'/><b/><c/>") + "<d/></r>", "r");
    ASSERT_TRUE(document.Find("a"));
    for (int i = 0; i < length; ++i) {
      ASSERT_EQ(document.Attribute("n"), std::to_string(i));
      ASSERT_EQ(document.Next("a"), i + 1 < length);
    }
    ASSERT_TRUE(document.Next("d"));
    ASSERT_FALSE(document.Next("a"));
  }
}

TEST(XmlListTest, EveryOneOfManyAttributesIsFound) {
  std::string bytes = "<a";
  for (int i = 0; i < 1000; ++i) bytes += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
  OpenDocument document(bytes + "/>", "a");
  for (int i = 999; i >= 0; --i) {
    EXPECT_EQ(document.Attribute("n" + std::to_string(i)), std::to_string(i));
  }
  EXPECT_FALSE(document.Attribute("n1000"));
}

TEST(XmlNameTest, HalfACharacterIsNoReplacementCharacter) {
  OpenDocument document("<a xmlns='\xEF\xBF\xBD'/>");
  ovrant::utils::ovrant_ustring name = "\xEF\xBF\xBD:a";
  name[0] = 0xD800;
  EXPECT_FALSE(document.reader().FindElement(name));
  name[0] = 0xFFFD;
  EXPECT_TRUE(document.reader().FindElement(name));
}

TEST(XmlNameTest, BrokenRulesOfNamespacesAreIllFormed) {
  for (const char* const bytes :
       {"<p:a/>", "<a p:n='1'/>", "<a><b xmlns:p='urn:x'/><p:b/></a>", "<a xmlns:p=''/>",
        "<a xmlns:xmlns='urn:x'/>", "<a xmlns:xml='urn:x'/>",
        "<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>",
        "<a xmlns='http://www.w3.org/2000/xmlns/'/>", "<a:b:c xmlns:a='urn:x'/>", "<:a/>", "<a:/>",
        "<p:a xmlns:p='urn:x' xmlns:q='urn:x'></q:a>", "<a n='1' n='1'/>",
        "<a xmlns:p='urn:x' xmlns:q='urn:x' p:n='1' q:n='2'/>"}) {
    EXPECT_FALSE(Opens(bytes)) << bytes;
  }
  EXPECT_TRUE(Opens("<a xmlns:p='urn:x' xmlns:q='urn:y' p:n='1' q:n='2' n='3'/>"));
}

TEST(XmlNameTest, AUriMayHave256Bytes) {
  for (const std::string head : {"<a xmlns='", "<p:a xmlns:p='"}) {
    EXPECT_TRUE(Opens(head + std::string(256, 'u') + "'/>"));
    EXPECT_FALSE(Opens(head + std::string(257, 'u') + "'/>"));
    EXPECT_TRUE(Opens(head + Repeated("\xC3\xA9", 128) + "'/>"));
    EXPECT_FALSE(Opens(head + Repeated("\xC3\xA9", 129) + "'/>"));
  }
}

TEST(XmlNameTest, AnOverlongUriIsRefusedWhereverItIsDeclared) {
  const std::string uri(257, 'u');
  EXPECT_FALSE(Opens("<a><b><c xmlns:unused='" + uri + "'/></b></a>"));
  EXPECT_FALSE(Opens("<a><b xmlns='" + uri + "'>x</b></a>"));
  EXPECT_TRUE(Opens("<a n='" + uri + "'>" + uri + "</a>"));
}

}  // namespace
}  // namespace stowra_test
