// SPDX-License-Identifier: MIT
// What ContentItem::Load asks of the reader, and in what order.

#include <utility>

#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

constexpr char kModel[] = "http://schemas.stowra.example/stowra/2008#model";
constexpr char kQmf[] = "application/vnd.brevix.qmf";
constexpr char kKmz[] = "application/vnd.pellamy.kmz";

class ContentItemTest : public ContentTest {
 protected:
  // Loads an entry of these children and expects the reader to stand on it again.
  bool Load(const std::vector<XmlElement>& children) {
    const auto reader = ReaderOf(Parent("a:entry", children));
    EXPECT_TRUE(reader->FindElement("http://www.w3.org/2005/Atom:entry"));
    TakeEffects();
    const bool loaded = item.Load(reader.get());
    walk = TakeText();
    reader->LeaveElement("http://www.w3.org/2005/Atom:entry");
    return loaded;
  }

  ContentItem item;
  std::string walk;  // the effects of the last load
};

TEST_F(ContentItemTest, WalksAModelInItsOwnOrder) {
  EXPECT_TRUE(
      Load({Parent("m:group", {With("m:thumbnail", {{"url", "http://t/"}}),
                               With("m:thumbnail", {{"url", "http://t/?rtyp=st"}}),
                               With("m:content", {{"url", "http://d/?rtyp=s7"}, {"type", kQmf}}),
                               With("m:content", {{"url", "http://d/?x=y"}, {"type", kKmz}}),
                               With("m:content", {{"url", "http://d/?rtyp=k2"}, {"type", "zip"}}),
                               With("m:content", {{"url", "http://d/?rtyp=k2"}, {"type", kKmz}})}),
            Leaf("s:classifiedComponent", "true"), Leaf("s:dynamicComponent", "true"),
            Parent("a:author", {Leaf("a:uri", "u"), Leaf("a:name", "n")}),
            With("a:link", {{"type", "t"}, {"href", "h"}, {"rel", "alternate"}}),
            With("a:link", {{"type", "t"}, {"href", "h"}, {"rel", "x"}}), Leaf("a:summary", "s"),
            Leaf("a:title", "t"), With("a:category", {{"term", kModel}}),
            With("a:category", {{"term", "x"}}), Leaf("a:id", "i")}));
  EXPECT_EQ(walk,
            ".a:id | +a:category | @term | -a:category | .a:title | .a:summary | +a:link | "
            "@rel | @href | @type | >a:link | @rel | @href | @type | !>a:link | -a:link | "
            "+a:author | .a:name | .a:uri | -a:author | ?s:dynamicComponent | "
            "?s:classifiedComponent | +m:group | +m:thumbnail | @url | >m:thumbnail | @url | "
            "!>m:thumbnail | -m:thumbnail | +m:content | @url | @type | URL http://d/?rtyp=s7 | "
            "getValueForExtraInfoKey rtyp | >m:content | @url | @type | URL http://d/?x=y | "
            "getValueForExtraInfoKey rtyp: absent | >m:content | @url | @type | >m:content | "
            "@url | @type | URL http://d/?rtyp=k2 | getValueForExtraInfoKey rtyp | !>m:content | "
            "-m:content | -m:group");
}

TEST_F(ContentItemTest, WalksACollectionWithoutRenditions) {
  EXPECT_TRUE(Load({Leaf("a:id", "i"), With("a:category", {{"term", "x"}}), Leaf("a:title", "t"),
                    With("a:link", {{"rel", "r"}, {"href", "h"}, {"type", "t"}}),
                    With("a:content", {{"src", "http://c/"}, {"type", "application/atom+xml"}}),
                    Parent("a:author", {Leaf("a:name", "n"), Leaf("a:uri", "u")}),
                    Parent("m:group", {With("m:thumbnail", {{"url", "u"}})})}));
  EXPECT_EQ(walk,
            ".a:id | +a:category | @term | -a:category | .a:title | !.a:summary | +a:link | "
            "@rel | @href | @type | !>a:link | -a:link | +a:content | @type | @src | "
            "-a:content | +a:author | .a:name | .a:uri | -a:author | !?s:dynamicComponent | "
            "!?s:classifiedComponent | +m:group | +m:thumbnail | @url | !>m:thumbnail | "
            "-m:thumbnail | -m:group");
}

// Each element is there and without what is read from it.
TEST_F(ContentItemTest, ReadsOnWhateverIsMissing) {
  EXPECT_FALSE(Load({With("a:category", {}), With("a:link", {{"rel", "r"}}), With("a:link", {}),
                     With("a:content", {}), Parent("a:author", {}), Parent("m:group", {})}));
  EXPECT_EQ(walk,
            "!.a:id | +a:category | !@term | -a:category | !.a:title | !.a:summary | +a:link | "
            "@rel | !@href | >a:link | !@rel | !>a:link | -a:link | +a:content | !@type | "
            "-a:content | +a:author | !.a:name | !.a:uri | -a:author | !?s:dynamicComponent | "
            "!?s:classifiedComponent | +m:group | !+m:thumbnail | -m:group");
}

TEST_F(ContentItemTest, AModelsGroupIsReadWhateverIsMissing) {
  const XmlElement incomplete =
      Parent("m:group", {With("m:thumbnail", {}), With("m:content", {{"type", kQmf}}),
                         With("m:content", {{"url", "http://d/?rtyp=s7"}})});
  const std::pair<XmlElement, const char*> groups[] = {
      {incomplete,
       "+m:group | +m:thumbnail | !@url | !>m:thumbnail | -m:thumbnail | +m:content | !@url | "
       ">m:content | @url | !@type | !>m:content | -m:content | -m:group"},
      {Parent("m:group", {}), "+m:group | !+m:thumbnail | !+m:content | -m:group"},
      {Leaf("a:id", "i"), "| !+m:group"}};
  for (const auto& [group, end] : groups) {
    EXPECT_FALSE(Load({With("a:category", {{"term", kModel}}), group})) << end;
    EXPECT_THAT(walk, testing::EndsWith(end));
  }
}

TEST_F(ContentItemTest, WhatLeaveElementGivesIsNotLookedAt) {
  SetLeaveResult(false);
  EXPECT_TRUE(
      Load({Leaf("a:id", "i"), With("a:category", {{"term", kModel}}), Leaf("a:title", "t"),
            With("a:link", {{"rel", "r"}, {"href", "h"}, {"type", "t"}}),
            Parent("a:author", {Leaf("a:name", "n"), Leaf("a:uri", "u")}),
            Parent("m:group", {With("m:thumbnail", {{"url", "u"}}),
                               With("m:content", {{"url", "?rtyp=k2"}, {"type", kKmz}})})}));
}

// Only the low 32 bits of what find gives for an absent text are set on some platforms.
TEST_F(ContentItemTest, AnAbsentTextIsTakenFromTheLowBits) {
  for (const unsigned long absent : {0xFFFFFFFFUL, 0x12345678FFFFFFFFUL}) {
    SetAbsentIndex(absent);
    Load({Parent("a:author", {Leaf("a:uri", "http://u/?uq=1234")}),
          Parent("m:group", {With("m:thumbnail", {{"url", "http://t/"}})})});
    EXPECT_EQ(item.author_id_, "1234");
    EXPECT_EQ(item.thumbnail_url_, "");
    Load({Parent("a:author", {Leaf("a:uri", "http://u/")})});
    EXPECT_EQ(item.author_id_, "");
  }
}

TEST_F(ContentItemTest, RunningOutOfMemoryIsAFailure) {
  const std::vector<XmlElement> entry = {
      Leaf("a:id", "i"), With("a:link", {{"rel", "r"}, {"href", "h"}, {"type", "t"}}),
      Parent("m:group", {With("m:thumbnail", {{"url", "u"}})})};
  for (const char* const operation : {".a:id", "@type", "!>m:thumbnail"}) {
    SetFailingOperation(operation);
    const auto reader = ReaderOf(Parent("a:entry", entry));
    ASSERT_TRUE(reader->FindElement("http://www.w3.org/2005/Atom:entry"));
    EXPECT_FALSE(item.Load(reader.get())) << operation;
  }
}

}  // namespace
}  // namespace stowra_substitute
