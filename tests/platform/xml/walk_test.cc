// Moving about: FindElement, NextElement, LeaveElement.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

TEST(XmlWalkTest, StandsAtTheDocumentFirst) {
  XmlDocument document("<a b='1'><c/></a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Attribute("b"));
  EXPECT_FALSE(document.Text("c"));
  EXPECT_FALSE(document.Next("a"));
  EXPECT_FALSE(document.Leave("a"));
  EXPECT_FALSE(document.Leave(""));
  EXPECT_FALSE(document.Find("c"));
  EXPECT_TRUE(document.Find("a"));
  EXPECT_EQ(document.Attribute("b"), "1");
}

TEST(XmlWalkTest, WalksAListInTheUsualPattern) {
  XmlDocument document("<list><item>1</item><item>2</item><item>3</item></list>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("list"));
  ASSERT_TRUE(document.Find("item"));
  EXPECT_TRUE(document.Next("item"));
  EXPECT_TRUE(document.Next("item"));
  EXPECT_FALSE(document.Next("item"));
  EXPECT_TRUE(document.Leave("item"));
  EXPECT_EQ(document.Text("item"), "1");
  EXPECT_TRUE(document.Leave("list"));
  EXPECT_EQ(document.Text("list"), "123");
}

TEST(XmlWalkTest, ReadsWhatEachElementOfAListHolds) {
  XmlDocument document(
      "<list><item id='x'><name>one</name></item>"
      "<item id='y'><name>two</name><part n='1'/><part n='2'/></item></list>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("list"));
  ASSERT_TRUE(document.Find("item"));
  EXPECT_EQ(document.Attribute("id"), "x");
  EXPECT_EQ(document.Text("name"), "one");
  EXPECT_FALSE(document.Find("part"));
  ASSERT_TRUE(document.Next("item"));
  EXPECT_EQ(document.Attribute("id"), "y");
  EXPECT_EQ(document.Text("name"), "two");
  ASSERT_TRUE(document.Find("part"));
  EXPECT_EQ(document.Attribute("n"), "1");
  ASSERT_TRUE(document.Next("part"));
  EXPECT_EQ(document.Attribute("n"), "2");
  EXPECT_FALSE(document.Next("part"));
  EXPECT_TRUE(document.Leave("part"));
  EXPECT_EQ(document.Attribute("id"), "y");
  EXPECT_FALSE(document.Next("item"));
  EXPECT_TRUE(document.Leave("item"));
  EXPECT_TRUE(document.Leave("list"));
}

TEST(XmlWalkTest, StaysAtTheLastOfAListAfterItsEnd) {
  XmlDocument document("<r><i n='1'/><other/><i n='2'/><other/></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  ASSERT_TRUE(document.Find("i"));
  ASSERT_TRUE(document.Next("i"));
  for (int again = 0; again < 3; ++again) {
    EXPECT_FALSE(document.Next("i"));
    EXPECT_EQ(document.Attribute("n"), "2");
  }
  EXPECT_TRUE(document.Leave("i"));
  EXPECT_FALSE(document.Attribute("n"));
  EXPECT_TRUE(document.Find("other"));
}

TEST(XmlWalkTest, FindElementTakesTheFirst) {
  XmlDocument document("<r>text<x/><i n='1'/><i n='2'/></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  for (int again = 0; again < 3; ++again) {
    ASSERT_TRUE(document.Find("i"));
    EXPECT_EQ(document.Attribute("n"), "1");
    EXPECT_TRUE(document.Next("i"));
    EXPECT_EQ(document.Attribute("n"), "2");
    ASSERT_TRUE(document.Leave("i"));
  }
}

TEST(XmlWalkTest, FindElementLooksAtChildrenOnly) {
  XmlDocument document("<r id='r'><x><deep id='1'/></x><deep id='2'/><x><only/></x></r>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Find("x"));
  EXPECT_FALSE(document.Find("deep"));
  ASSERT_TRUE(document.Find("r"));
  EXPECT_FALSE(document.Find("r"));
  EXPECT_FALSE(document.Find("only"));
  EXPECT_EQ(document.Attribute("id"), "r");
  ASSERT_TRUE(document.Find("deep"));
  EXPECT_EQ(document.Attribute("id"), "2");
}

TEST(XmlWalkTest, NextElementLooksAtLaterSiblingsOnly) {
  XmlDocument document("<r><n/><i><n/><i/></i><x><n/></x></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  ASSERT_TRUE(document.Find("i"));
  EXPECT_FALSE(document.Next("n"));
  EXPECT_FALSE(document.Next("i"));
  EXPECT_FALSE(document.Next("r"));
  EXPECT_TRUE(document.Next("x"));
}

TEST(XmlWalkTest, NextElementMayGoToAnotherName) {
  XmlDocument document("<r><a n='1'/><b n='2'/><a n='3'/><b n='4'/></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  ASSERT_TRUE(document.Find("a"));
  ASSERT_TRUE(document.Next("b"));
  EXPECT_EQ(document.Attribute("n"), "2");
  ASSERT_TRUE(document.Next("b"));
  EXPECT_EQ(document.Attribute("n"), "4");
  EXPECT_FALSE(document.Next("a"));
  EXPECT_FALSE(document.Leave("a"));
  EXPECT_TRUE(document.Leave("b"));
}

TEST(XmlWalkTest, LeaveElementWantsTheNameOfTheCurrentElement) {
  XmlDocument document("<r><i n='1'><r/></i></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  ASSERT_TRUE(document.Find("i"));
  for (const char* const other : {"r", "I", "", "i ", "none"}) {
    EXPECT_FALSE(document.Leave(other)) << other;
    EXPECT_EQ(document.Attribute("n"), "1") << other;
  }
  EXPECT_TRUE(document.Leave("i"));
}

TEST(XmlWalkTest, LeavingTheRootLeadsToTheDocument) {
  XmlDocument document("<r n='1'><i/></r>");
  ASSERT_TRUE(document.is_open());
  for (int again = 0; again < 3; ++again) {
    ASSERT_TRUE(document.Find("r"));
    EXPECT_FALSE(document.Next("r"));
    ASSERT_TRUE(document.Leave("r"));
    EXPECT_FALSE(document.Attribute("n"));
    EXPECT_FALSE(document.Leave("r"));
    EXPECT_FALSE(document.Find("i"));
  }
}

TEST(XmlWalkTest, ChildrenAreFoundInAnyOrder) {
  const std::vector<std::string> names = {"one", "two", "three", "four"};
  XmlDocument document(
      "<r>text<junk/><one>1</one><!-- two --><junk>x</junk><two>2</two><![CDATA[<four/>]]>"
      "<three>3</three><?four?><junk/><four>4</four>&lt;one/></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  for (std::size_t first = 0; first < names.size(); ++first) {
    for (std::size_t second = 0; second < names.size(); ++second) {
      EXPECT_EQ(document.Text(names[first]), std::to_string(first + 1));
      ASSERT_TRUE(document.Find(names[second]));
      ASSERT_TRUE(document.Leave(names[second]));
      EXPECT_EQ(document.Int(names[first]), static_cast<int>(first + 1));
    }
  }
}

TEST(XmlWalkTest, ListsMayLieAmongEachOther) {
  XmlDocument document("<r><a n='1'/><b n='2'/><a n='3'/><c/><b n='4'/><a n='5'/></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  for (const std::string name : {"b", "a", "b"}) {
    std::string numbers;
    ASSERT_TRUE(document.Find(name));
    do {
      numbers += document.Attribute("n").value_or("none");
    } while (document.Next(name));
    ASSERT_TRUE(document.Leave(name));
    EXPECT_EQ(numbers, name == "a" ? "135" : "24");
  }
}

TEST(XmlWalkTest, ListsOfAnyLengthAreWalkedToTheirEnd) {
  for (const int length : {1, 2, 10, 63, 64, 65, 100, 1000}) {
    std::string bytes = "<r>";
    for (int i = 0; i < length; ++i) bytes += "<a n='" + std::to_string(i) + "'/><b/><c/>";
    XmlDocument document(bytes + "<d/></r>");
    ASSERT_TRUE(document.is_open());
    ASSERT_TRUE(document.Find("r"));
    ASSERT_TRUE(document.Find("a"));
    for (int i = 0; i < length; ++i) {
      ASSERT_EQ(document.Attribute("n"), std::to_string(i));
      ASSERT_EQ(document.Next("a"), i + 1 < length);
    }
    ASSERT_TRUE(document.Next("d"));
    ASSERT_FALSE(document.Next("a"));
  }
}

TEST(XmlWalkTest, AskingForTextsDoesNotMove) {
  XmlDocument document("<r n='0'><i n='1'><v>1</v></i><i n='2'><v>x</v><v>2</v></i></r>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("r"));
  ASSERT_TRUE(document.Find("i"));
  EXPECT_EQ(document.Int("v"), 1);
  EXPECT_EQ(document.Attribute("n"), "1");
  ASSERT_TRUE(document.Next("i"));
  EXPECT_FALSE(document.Int("v"));
  EXPECT_FALSE(document.Bool("v"));
  EXPECT_EQ(document.Text("v"), "x");
  EXPECT_EQ(document.Attribute("n"), "2");
}

TEST(XmlWalkTest, NamesMatchExactly) {
  XmlDocument document("<Name><na.me-_1\xC3\xA9/><\xC3\x89l\xE4\xB8\x80/></Name>");
  ASSERT_TRUE(document.is_open());
  for (const char* const wrong : {"name", "NAME", "Nam", "Names", " Name", "Name ", "", ":Name"}) {
    EXPECT_FALSE(document.Find(wrong)) << wrong;
  }
  ASSERT_TRUE(document.Find("Name"));
  for (const char* const wrong :
       {"na.me-_1e", "na.me-_1\xC3\x89", "na.me-_1e\xCC\x81", "na.me-_1"}) {
    EXPECT_FALSE(document.Find(wrong)) << wrong;
  }
  EXPECT_TRUE(document.Find("na.me-_1\xC3\xA9"));
  EXPECT_TRUE(document.Next("\xC3\x89l\xE4\xB8\x80"));
}

TEST(XmlWalkTest, ANameEndsOnlyWhereItEnds) {
  XmlDocument document("<a><b/></a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Find(std::string("a\0", 2)));
  EXPECT_FALSE(document.Find(std::string("a\0b", 3)));
  ASSERT_TRUE(document.Find("a"));
  EXPECT_FALSE(document.Leave(std::string("a\0", 2)));
  EXPECT_FALSE(document.Text(std::string("b\0", 2)));
}

}  // namespace
}  // namespace stowra_test
