// SPDX-License-Identifier: MIT
// Long lists whose children are asked for in awkward orders. The cost must not be quadratic.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;

constexpr int kMany = 1'000'000;

std::string NameOf(int number) { return "n" + std::to_string(number); }

// "<a>", an element with the text of its number for each of the names, "</a>".
std::string ListOf(const std::function<std::string(int number)>& name, int count) {
  std::string bytes = "<a>";
  for (int i = 0; i < count; ++i) {
    const std::string this_name = name(i);
    bytes += "<" + this_name + ">" + std::to_string(i) + "</" + this_name + ">";
  }
  return bytes + "</a>";
}

// How often NextElement succeeds.
int CountNext(IXMLInput& reader, const ovrant_ustring& name) {
  int count = 0;
  while (reader.NextElement(name)) ++count;
  return count;
}

TEST(XmlHostileOrderTest, ADifferentNameEachVisitedInReverse) {
  EXPECT_TRUE(OpenHostile(ListOf(NameOf, kMany), [](IXMLInput& reader) {
    ASSERT_TRUE(reader.FindElement("a"));
    for (int i = kMany - 1; i >= 0; --i) {
      const ovrant_ustring name = Text(NameOf(i));
      ASSERT_TRUE(reader.FindElement(name));
      ASSERT_FALSE(reader.NextElement(name));
      ASSERT_TRUE(reader.LeaveElement(name));
    }
  }));
}

TEST(XmlHostileOrderTest, OneNameForAll) {
  const auto same = [](int) { return std::string("b"); };
  EXPECT_TRUE(OpenHostile(ListOf(same, kMany), [](IXMLInput& reader) {
    const ovrant_ustring name = "b";
    ASSERT_TRUE(reader.FindElement("a"));
    ASSERT_TRUE(reader.FindElement(name));
    EXPECT_EQ(CountNext(reader, name), kMany - 1);
  }));
}

TEST(XmlHostileOrderTest, AThousandListsThroughEachOther) {
  const auto one_of_thousand = [](int i) { return NameOf(i % 1'000); };
  EXPECT_TRUE(OpenHostile(ListOf(one_of_thousand, kMany), [](IXMLInput& reader) {
    ASSERT_TRUE(reader.FindElement("a"));
    for (int i = 999; i >= 0; --i) {
      const ovrant_ustring name = Text(NameOf(i));
      ASSERT_TRUE(reader.FindElement(name));
      ASSERT_EQ(CountNext(reader, name), kMany / 1'000 - 1);
      ASSERT_TRUE(reader.LeaveElement(name));
    }
  }));
}

TEST(XmlHostileOrderTest, TwoNamesInTurn) {
  const auto in_turn = [](int i) { return std::string(i % 2 == 0 ? "b" : "c"); };
  EXPECT_TRUE(OpenHostile(ListOf(in_turn, kMany), [](IXMLInput& reader) {
    const ovrant_ustring names[] = {"b", "c"};
    ASSERT_TRUE(reader.FindElement("a"));
    ASSERT_TRUE(reader.FindElement("b"));
    for (int i = 1; i < kMany; ++i) ASSERT_TRUE(reader.NextElement(names[i % 2]));
    EXPECT_FALSE(reader.NextElement("b"));
    EXPECT_FALSE(reader.NextElement("c"));
  }));
}

// The name is that of other elements, so it is not enough that the document has none of it.
TEST(XmlHostileOrderTest, ANameThatNeverComesIsAskedForAtEachSibling) {
  std::string bytes = "<a><c/>" + Repeated("<b/>", kMany) + "<b><c/><d/></b></a>";
  EXPECT_TRUE(OpenHostile(bytes, [](IXMLInput& reader) {
    const ovrant_ustring b = "b";
    const ovrant_ustring c = "c";
    const ovrant_ustring d = "d";
    ASSERT_TRUE(reader.FindElement("a"));
    ASSERT_TRUE(reader.FindElement(b));
    do {
      ASSERT_FALSE(reader.NextElement(c));
      ASSERT_FALSE(reader.NextElement(d));
    } while (reader.NextElement(b));
  }));
}

TEST(XmlHostileOrderTest, AChildThatIsNotThereIsAskedForOftenInAGreatList) {
  std::string bytes = "<a>" + Repeated("<b><d/></b>", kMany) + "<c/></a>";
  EXPECT_TRUE(OpenHostile(bytes, [](IXMLInput& reader) {
    const ovrant_ustring c = "c";
    const ovrant_ustring d = "d";
    ovrant_ustring text;
    ASSERT_TRUE(reader.FindElement("a"));
    for (int i = 0; i < kMany; ++i) {
      ASSERT_FALSE(reader.FindElement(d));
      ASSERT_FALSE(reader.GetElementText(d, text));
      ASSERT_TRUE(reader.GetElementText(c, text));
    }
  }));
}

TEST(XmlHostileOrderTest, EachOfManyListsOnceAndThenTheOther) {
  // The reader goes back and forth between two great lists.
  const std::string list = "<l>" + Repeated("<b/>", 1'000) + "<c/></l>";
  EXPECT_TRUE(OpenHostile("<a>" + Repeated(list, 1'000) + "</a>", [](IXMLInput& reader) {
    ASSERT_TRUE(reader.FindElement("a"));
    for (int again = 0; again < 3; ++again) {
      ASSERT_TRUE(reader.FindElement("l"));
      do {
        ASSERT_TRUE(reader.FindElement("c"));
        ASSERT_TRUE(reader.LeaveElement("c"));
        ASSERT_TRUE(reader.FindElement("b"));
        ASSERT_TRUE(reader.LeaveElement("b"));
      } while (reader.NextElement("l"));
      ASSERT_TRUE(reader.LeaveElement("l"));
    }
  }));
}

const std::string k100(100, 'x');

std::string NumberOf(int i) { return std::to_string(100'000 + i); }

// One of the two parts for each of 16 bits.
std::string OfBits(int number, const char* if_set, const char* if_not) {
  std::string name;
  for (int bit = 0; bit < 16; ++bit) name += (number >> bit & 1) != 0 ? if_set : if_not;
  return name;
}

// "Aa" and "BB" are the same to every hash that multiplies by 31. Anagrams are the same to every
// sum, and to every "exclusive or", of characters.
TEST(XmlHostileOrderTest, ADifferentNameEachInReverse) {
  const struct {
    const char* names;
    int count;
    std::string (*name)(int number);
  } rows[] = {
      {"numbers", kMany, NameOf},
      {"same head", 100'000, [](int i) { return k100 + k100 + NumberOf(i); }},
      {"same tail", 100'000, [](int i) { return "n" + NumberOf(i) + k100 + k100; }},
      {"same head and tail", 100'000, [](int i) { return k100 + NumberOf(i) + k100; }},
      {"one to a hash by 31", 1 << 16, [](int i) { return OfBits(i, "Aa", "BB"); }},
      {"anagrams", 1 << 16, [](int i) { return OfBits(i, "ab", "ba"); }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.names);
    EXPECT_TRUE(OpenHostile(ListOf(row.name, row.count), [&row](IXMLInput& reader) {
      ASSERT_TRUE(reader.FindElement("a"));
      for (int i = row.count - 1; i >= 0; --i) {
        int value = -1;
        ASSERT_TRUE(reader.GetElementInt(Text(row.name(i)), value)) << row.names;
        ASSERT_EQ(value, i) << row.names;
      }
    }));
  }
}

}  // namespace
}  // namespace stowra_test
