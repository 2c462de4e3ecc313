// SPDX-License-Identifier: MIT
// The thumbnails of an entry, its choice of a download, and the fields after a failure.

#include <climits>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "tests/content/content_item_fixture.h"
#include "tests/content/fields.h"

namespace stowra_test {
namespace {

class ContentItemGroupTest : public ContentItemFixture {
 protected:
  bool LoadGroup(const std::string& group) { return Load(Model().With("group", group)); }

  // A group of those thumbnails, with a rendition that will do.
  bool LoadThumbnails(const std::string& thumbnails) {
    return LoadGroup(Tag("m:group", thumbnails + Rendition("?rtyp=k2")));
  }
  bool LoadThumbnail(const std::string& url) {
    return LoadThumbnails("<m:thumbnail url='" + url + "'/>");
  }
};

TEST_F(ContentItemGroupTest, TheLastMatchingThumbnailWins) {
  EXPECT_TRUE(
      LoadThumbnails("<m:thumbnail url='1?rtyp=st'/><m:thumbnail url='2?x&amp;rtyp=st2'/>"
                     "<m:thumbnail url='3?rtyp=lt'/>"));
  EXPECT_EQ(item.thumbnail_url_, "2?x&rtyp=st2");
}

TEST_F(ContentItemGroupTest, AThumbnailMatchesAnywhereInItsUrl) {
  for (const char* const url : {"rtyp=st", "http://a/rtyp=st/", "?xrtyp=st", "#rtyp=st"}) {
    EXPECT_TRUE(LoadThumbnail(url));
    EXPECT_EQ(item.thumbnail_url_, url);
  }
}

TEST_F(ContentItemGroupTest, AThumbnailOfAnotherTypeIsEnough) {
  for (const char* const url : {"", "http://a/", "?rtyp=lt", "?rtyp=ST", "?rtyp%3Dst"}) {
    EXPECT_TRUE(LoadThumbnail(url)) << url;
    EXPECT_EQ(item.thumbnail_url_, "") << url;
  }
}

TEST_F(ContentItemGroupTest, AThumbnailWithoutUrlRejectsTheEntry) {
  for (const char* const thumbnails :
       {"", "<m:thumbnail/>", "<m:thumbnail/><m:thumbnail url='?rtyp=st'/>",
        "<m:thumbnail url='?rtyp=st'/><m:thumbnail/>", "<m:thumbnail m:url='?rtyp=st'/>"}) {
    EXPECT_FALSE(LoadThumbnails(thumbnails)) << thumbnails;
    EXPECT_EQ(item.download_url_, "?rtyp=k2") << thumbnails;
  }
}

TEST_F(ContentItemGroupTest, OnlyTheFirstGroupIsRead) {
  EXPECT_TRUE(LoadGroup(Group(Rendition("1?rtyp=k2")) +
                        "<m:group><m:thumbnail url='2?rtyp=st'/></m:group>"));
  EXPECT_EQ(item.thumbnail_url_, "http://pictures/1?rtyp=st");
  EXPECT_FALSE(LoadGroup("<m:group/>" + Group(Rendition("1?rtyp=k2"))));
  EXPECT_EQ(item.thumbnail_url_, "");
}

TEST_F(ContentItemGroupTest, ThumbnailsAndRenditionsOutsideTheGroupDoNotCount) {
  EXPECT_FALSE(LoadGroup("<m:thumbnail url='?rtyp=st'/>" + Tag("m:group", Rendition("?rtyp=k2"))));
  EXPECT_FALSE(LoadGroup(Rendition("?rtyp=k2") + Group("")));
  EXPECT_EQ(item.download_url_, "");
}

TEST_F(ContentItemGroupTest, AFailureKeepsWhatHasBeenRead) {
  EXPECT_FALSE(Load(Model().Without("title").With("flags", Tag("s:dynamicComponent", "true"))));
  EXPECT_EQ(item.id_, "urn:1");
  EXPECT_EQ(item.author_name_, "Ann");
  EXPECT_TRUE(item.dynamic_component_);
  EXPECT_EQ(item.thumbnail_url_, "http://pictures/1?rtyp=st");
  EXPECT_EQ(item.download_url_, "http://files/1?rtyp=k2");

  EXPECT_FALSE(Load(Model().Without("group")));
  EXPECT_EQ(item.title_, "Chair");
  EXPECT_EQ(item.thumbnail_url_, "");
  EXPECT_EQ(item.download_url_, "");
}

TEST_F(ContentItemGroupTest, LoadStartsFromTheDefaults) {
  item.max_qmf_version_ = 9;
  ASSERT_TRUE(
      Load(Model()
               .With("flags", Tag("s:dynamicComponent", "1") + Tag("s:classifiedComponent", "1"))
               .With("group", Group(Rendition("?rtyp=s9")))));
  EXPECT_EQ(item.download_format_, 2);
  EXPECT_FALSE(LoadEntry("<entry/>"));
  EXPECT_EQ(Fields(item), Fields(ContentItem()));
  EXPECT_EQ(item.max_qmf_version_, 9);
}

// Which of several renditions is chosen. "rtyp" names each of them; their URLs are numbered from 1.
struct Choice {
  const char* values;  // separated by spaces
  int newest;
  int chosen;  // 0: none
  int format;
};

constexpr Choice kChoices[] = {
    {"k2", 0, 1, 1},
    {"k2 k2", 0, 1, 1},
    {"k2 s6 s8", 8, 3, 2},
    {"k2 s6 s8", 7, 2, 2},
    {"k2 s6 s8", 5, 1, 1},
    {"k2 s6 s8", 0, 1, 1},
    {"s8 s6 k2", 8, 1, 2},
    {"s6 k2", 8, 1, 2},
    {"s9 k2", 8, 2, 1},
    {"s9", 8, 0, 0},
    {"s7 s7", 8, 1, 2},
    {"s6 s8 s7", 8, 2, 2},
    {"s6 s9 s7", 8, 3, 2},
    {"s", 5, 1, 2},
    {"s", 4, 0, 0},
    {"s s5", 8, 1, 2},
    {"s5 s", 8, 1, 2},
    {"s4 s", 8, 2, 2},
    {"s s6", 8, 2, 2},
    {"s0", 8, 0, 0},
    {"s0 k2", 8, 2, 1},
    {"k2 s0", 8, 1, 1},
    {"s1", 8, 1, 2},
    {"s1", -1, 0, 0},
    {"s0", -1, 0, 0},
    {"s10 s9", 12, 1, 2},
    {"st k2", 99, 2, 1},
    {"s7a s6 st", 99, 2, 2},
    {"%73%37", 8, 1, 2},
    {"s%37", 8, 1, 2},
    {"%73", 5, 1, 2},
    {"k%32", 8, 1, 1},
    {"%6B2", 8, 1, 1},
    {"%6b2", 8, 1, 1},
    {"s8#s9", 8, 1, 2},
    {"s2147483647", INT_MAX, 1, 2},
    {"s2147483647", 2147483646, 0, 0},
    {"s4294967303 s6", INT_MAX, 2, 2},
    {"k2 s99999999999999999999999999", INT_MAX, 1, 1},
};

TEST_F(ContentItemGroupTest, TakesTheNewestThatTheHostOpens) {
  for (const Choice& choice : kChoices) {
    SCOPED_TRACE(testing::Message() << choice.values << " up to " << choice.newest);
    std::string renditions;
    std::string chosen;
    int number = 0;
    std::istringstream values(choice.values);
    for (std::string value; values >> value;) {
      const std::string url = "http://a/" + std::to_string(++number) + "?rtyp=" + value;
      // Both types are accepted.
      const bool is_kmz = number % 2 == 0;
      renditions += is_kmz ? Rendition(url, "application/vnd.pellamy.kmz") : Rendition(url);
      if (number == choice.chosen) chosen = url;
    }
    item.max_qmf_version_ = choice.newest;
    EXPECT_EQ(LoadGroup(Group(renditions)), choice.chosen != 0);
    EXPECT_EQ(item.download_url_, Text(chosen));
    EXPECT_EQ(item.download_format_, choice.format);
    EXPECT_EQ(item.max_qmf_version_, choice.newest);
  }
}

TEST_F(ContentItemGroupTest, TextsThatAreNoVersionAreNotChosen) {
  item.max_qmf_version_ = 99;
  for (const std::string value : {"st", "S7", "K2", "k22", "k", "k3", "xk2", "xs7", "s+7", "s%2B7",
                                  "s7+", "+s7", "k2+", "s7%00", "s%C2%B2"}) {
    EXPECT_FALSE(LoadGroup(Group(Rendition("http://a/?rtyp=" + value)))) << value;
    EXPECT_EQ(item.download_url_, "") << value;
    EXPECT_EQ(item.download_format_, 0) << value;
  }
}

TEST_F(ContentItemGroupTest, OnlyTheTwoTypesAreConsidered) {
  item.max_qmf_version_ = 8;
  for (const char* const type :
       {"application/zip", "", "application/vnd.brevix.qmf2", "Application/vnd.brevix.qmf",
        "application/vnd.pellamy.kmz;x=y", "application/vnd.pellamy.qmf", "image/png"}) {
    EXPECT_FALSE(LoadGroup(Group(Rendition("1?rtyp=s7", type)))) << type;
    EXPECT_EQ(item.download_format_, 0) << type;
    EXPECT_TRUE(LoadGroup(Group(Rendition("1?rtyp=s7", type) + Rendition("2?rtyp=k2") +
                                Rendition("3?rtyp=k2", type))))
        << type;
    EXPECT_EQ(item.download_url_, "2?rtyp=k2") << type;
  }
}

TEST_F(ContentItemGroupTest, ARenditionWithoutTheParameterIsSkipped) {
  item.max_qmf_version_ = 8;
  for (const char* const url :
       {"", "http://a/", "http://a/?", "http://a/?rtyp", "http://a/?rtyp=", "http://a/?RTYP=k2",
        "http://a/#?rtyp=k2", "http://a/rtyp=k2", "http://a/?xrtyp=s7", "http://a/?x=rtyp=s7"}) {
    EXPECT_FALSE(LoadGroup(Group(Rendition(url)))) << url;
    EXPECT_TRUE(LoadGroup(Group(Rendition(url) + Rendition("?rtyp=s7")))) << url;
    EXPECT_EQ(item.download_url_, "?rtyp=s7") << url;
  }
}

TEST_F(ContentItemGroupTest, TheFirstParameterOfThatNameCounts) {
  item.max_qmf_version_ = 8;
  EXPECT_TRUE(LoadGroup(Group(Rendition("?x=s8&amp;rtyp=k2&amp;rtyp=s8"))));
  EXPECT_EQ(item.download_format_, 1);
  EXPECT_TRUE(LoadGroup(
      Group(Rendition("?rtyp=s7&amp;rtyp=s8&amp;x=s8") + Rendition("?rtyp=s6&amp;rtyp=s8"))));
  EXPECT_EQ(item.download_url_, "?rtyp=s7&rtyp=s8&x=s8");
}

TEST_F(ContentItemGroupTest, AnIncompleteRenditionRejectsTheEntryAndTheOthersAreRead) {
  for (const char* const bad :
       {"<m:content/>", "<m:content url='1?rtyp=s8'/>",
        "<m:content type='application/vnd.brevix.qmf'/>", "<m:content type='application/zip'/>"}) {
    item.max_qmf_version_ = 8;
    EXPECT_FALSE(LoadGroup(Group(bad + Rendition("2?rtyp=s7")))) << bad;
    EXPECT_EQ(item.download_url_, "2?rtyp=s7") << bad;
    EXPECT_FALSE(LoadGroup(Group(Rendition("2?rtyp=k2") + bad))) << bad;
    EXPECT_EQ(item.download_format_, 1) << bad;
  }
}

// The version, or nothing. In that case the caller's number is unchanged.
std::optional<int> VersionOf(const ovrant::utils::ovrant_ustring& value) {
  ContentItem item;
  int version = -77;
  if (item.ExtractQmfVersionFromRTypValue(value, version)) return version;
  EXPECT_EQ(version, -77);
  return std::nullopt;
}

TEST(RtypVersionTest, IsTheNumberBehindTheLetter) {
  const std::pair<const char*, int> values[] = {
      {"s7", 7},
      {"s", 5},
      {"s12", 12},
      {"s0", 0},
      {"s007", 7},
      {"s00000000000000000007", 7},
      {"s2147483647", INT_MAX},
  };
  for (const auto& [value, version] : values) EXPECT_EQ(VersionOf(value), version) << value;
}

TEST(RtypVersionTest, OtherTextsHaveNone) {
  for (const char* const value : {"", "st", "s7a", "sa7", "k2", "S7", "7", " s7", "s7 ", "s 7",
                                  "s-7", "s+7", "s7.", "ss", "s/", "s:",
                                  "\xC5\xB3"
                                  "7"}) {
    EXPECT_EQ(VersionOf(value), std::nullopt) << value;
  }
}

TEST(RtypVersionTest, OnlyAsciiDigitsAreDigits) {
  for (const char* const value :
       {"s\xC2\xB2", "s\xC2\xB9", "s\xD9\xA7", "s\xEF\xBC\x97", "s\xC4\xB7", "s7\xC4\xB7",
        "s\xF0\x9D\x9F\x97", "s1\xE3\x84\xB1"}) {
    EXPECT_EQ(VersionOf(value), std::nullopt) << value;
  }
  EXPECT_EQ(VersionOf(Text(std::string_view("s\0", 2))), std::nullopt);
  EXPECT_EQ(VersionOf(Text(std::string_view("s7\0", 3))), std::nullopt);
}

TEST(RtypVersionTest, BeyondThirtyTwoBitsIsZero) {
  for (const char* const value : {"s2147483648", "s4294967295", "s4294967303",
                                  "s18446744073709551623", "s99999999999999999999999999"}) {
    EXPECT_EQ(VersionOf(value), 0) << value;
  }
}

}  // namespace
}  // namespace stowra_test
