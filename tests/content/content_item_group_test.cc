// SPDX-License-Identifier: MIT
// The thumbnails of an entry, its choice of a download, and the fields after a failure.

#include <climits>
#include <ostream>
#include <sstream>
#include <string>

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
  EXPECT_EQ(Fields(item), Fields(ovrant::stowraapiclient::ContentItem()));
  EXPECT_EQ(item.max_qmf_version_, 9);
}

// Which of several renditions is chosen. "rtyp" names each of them; their URLs are numbered from 1.
struct Choice {
  const char* values;  // separated by spaces
  int newest;
  int chosen;  // 0: none
  int format;
};

void PrintTo(const Choice& choice, std::ostream* out) {
  *out << choice.values << " up to " << choice.newest;
}

class ContentItemChoiceTest : public ContentItemFixture,
                              public testing::WithParamInterface<Choice> {};

TEST_P(ContentItemChoiceTest, TakesTheNewestThatTheHostOpens) {
  const Choice& choice = GetParam();
  std::string renditions;
  std::string chosen;
  int number = 0;
  std::istringstream values(choice.values);
  for (std::string value; values >> value;) {
    const std::string url = "http://a/" + std::to_string(++number) + "?rtyp=" + value;
    // Both types are accepted.
    renditions += number % 2 == 0 ? Rendition(url, "application/vnd.pellamy.kmz") : Rendition(url);
    if (number == choice.chosen) chosen = url;
  }
  item.max_qmf_version_ = choice.newest;
  EXPECT_EQ(Load(Model().With("group", Group(renditions))), choice.chosen != 0);
  EXPECT_EQ(item.download_url_, Text(chosen));
  EXPECT_EQ(item.download_format_, choice.format);
  EXPECT_EQ(item.max_qmf_version_, choice.newest);
}

INSTANTIATE_TEST_SUITE_P(
    Renditions, ContentItemChoiceTest,
    testing::Values(Choice{"k2", 0, 1, 1}, Choice{"k2 k2", 0, 1, 1}, Choice{"k2 s6 s8", 8, 3, 2},
                    Choice{"k2 s6 s8", 7, 2, 2}, Choice{"k2 s6 s8", 5, 1, 1},
                    Choice{"k2 s6 s8", 0, 1, 1}, Choice{"s8 s6 k2", 8, 1, 2},
                    Choice{"s6 k2", 8, 1, 2}, Choice{"s9 k2", 8, 2, 1}, Choice{"s9", 8, 0, 0},
                    Choice{"s8", 8, 1, 2}, Choice{"s7", 8, 1, 2}, Choice{"s7 s7", 8, 1, 2},
                    Choice{"s6 s8 s7", 8, 2, 2}, Choice{"s6 s9 s7", 8, 3, 2}, Choice{"s", 5, 1, 2},
                    Choice{"s", 4, 0, 0}, Choice{"s s5", 8, 1, 2}, Choice{"s5 s", 8, 1, 2},
                    Choice{"s4 s", 8, 2, 2}, Choice{"s s6", 8, 2, 2}, Choice{"s0", 8, 0, 0},
                    Choice{"s0 k2", 8, 2, 1}, Choice{"k2 s0", 8, 1, 1}, Choice{"s1", 8, 1, 2},
                    Choice{"s1", -1, 0, 0}, Choice{"s0", -1, 0, 0}, Choice{"s10 s9", 12, 1, 2},
                    Choice{"s12", 12, 1, 2}, Choice{"s007", 8, 1, 2},
                    Choice{"s00000000000000000007", 8, 1, 2}, Choice{"st k2", 99, 2, 1},
                    Choice{"s7a s6 st", 99, 2, 2}));

INSTANTIATE_TEST_SUITE_P(PercentEncodedTexts, ContentItemChoiceTest,
                         testing::Values(Choice{"%73%37", 8, 1, 2}, Choice{"s%37", 8, 1, 2},
                                         Choice{"%73", 5, 1, 2}, Choice{"k%32", 8, 1, 1},
                                         Choice{"%6B2", 8, 1, 1}, Choice{"%6b2", 8, 1, 1},
                                         Choice{"s8#s9", 8, 1, 2}));

INSTANTIATE_TEST_SUITE_P(
    VersionsBeyond32Bits, ContentItemChoiceTest,
    testing::Values(Choice{"s2147483647", INT_MAX, 1, 2}, Choice{"s2147483647", 2147483646, 0, 0},
                    Choice{"s2147483648", INT_MAX, 0, 0}, Choice{"s4294967295", INT_MAX, 0, 0},
                    Choice{"s4294967303", INT_MAX, 0, 0}, Choice{"s4294967303 s6", INT_MAX, 2, 2},
                    Choice{"s18446744073709551623", INT_MAX, 0, 0},
                    Choice{"k2 s99999999999999999999999999", INT_MAX, 1, 1}));

TEST_F(ContentItemGroupTest, TextsThatAreNoVersionAreNotChosen) {
  item.max_qmf_version_ = 99;
  for (const std::string value :
       {"st", "s7a", "sa7", "S7", "K2", "k22", "k", "k3", "xk2", "7", "xs7", "s-7", "s+7", "s%2B7",
        "s7+", "s7.0", "+s7", "k2+", "s/", "s:", "s7%00",
        // Digits of other scripts: superscript two, Arabic seven, fullwidth seven. The last ends in
        // the byte of a digit.
        "s%C2%B2", "s%D9%A7", "s%EF%BC%97", "s%C4%B7"}) {
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

}  // namespace
}  // namespace stowra_test
