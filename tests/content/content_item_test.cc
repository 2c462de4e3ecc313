// SPDX-License-Identifier: MIT
// The required parts of an entry, its kind, author, links and flags.

#include "common_stowraapi/content/content_item.h"

#include <string>
#include <string_view>
#include <utility>

#include "tests/content/content_item_fixture.h"
#include "tests/content/fields.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::kCollection;
using ovrant::stowraapiclient::kK2Download;
using ovrant::stowraapiclient::kModel;
using ovrant::stowraapiclient::kNoDownload;
using ovrant::stowraapiclient::kQmfDownload;

const std::string kModelTerm = std::string(kSchema) + "#model";
const std::string kUserQuery = std::string(kSchema) + "#user.query";

static_assert(std::string_view(ovrant::stowraapiclient::kContentSchemaNamespace) == kSchema);
static_assert(kModel == 0 && kCollection == 1);
static_assert(kNoDownload == 0 && kK2Download == 1 && kQmfDownload == 2);

class ContentItemTest : public ContentItemFixture {
 protected:
  // A category, or several.
  bool LoadCategory(const std::string& category) {
    return Load(Model().With("category", category));
  }

  bool LoadLinks(const std::string& links) { return Load(Model().With("link", links)); }
};

std::string Term(const std::string& term) { return "<category term='" + term + "'/>"; }

TEST_F(ContentItemTest, ReadsEveryFieldOfAModel) {
  ASSERT_TRUE(Load(
      Model()
          .With("link", Link(kUserQuery, "http://q/", kAtom) + Link("alternate", "h", "text/html"))
          .With("content", "<content type='application/atom+xml' src='http://feed/'/>")
          .With("flags", Tag("s:dynamicComponent", "true") + Tag("s:classifiedComponent", "1"))));
  EXPECT_EQ(Fields(item),
            std::make_tuple(kModel, kK2Download, "urn:1", "Chair", "A chair", "Ann",
                            "http://ann/?uq=7&x=y", "http://q/", "7", "http://pictures/1?rtyp=st",
                            "http://files/1?rtyp=k2", "", "h", true, true));
  EXPECT_EQ(item.thumbnail_size_, 0);
  EXPECT_EQ(item.thumbnail_buffer_, nullptr);
}

TEST_F(ContentItemTest, ACollectionHasAFeedAndNoDownload) {
  ASSERT_TRUE(Load(Collection().With("group", Group(Rendition("http://a/?rtyp=k2")))));
  EXPECT_EQ(Fields(item),
            std::make_tuple(kCollection, kNoDownload, "urn:1", "Chair", "A chair", "Ann",
                            "http://ann/?uq=7&x=y", "", "7", "http://pictures/1?rtyp=st", "",
                            "http://feed/&q=is:downloadable", "http://page/", false, false));
}

TEST_F(ContentItemTest, EveryPartButSummaryAndFlagsIsRequired) {
  for (const Parts& entry : {Model(), Collection()}) {
    for (const std::string& part : entry.names()) {
      const bool optional = part == "summary" || part == "flags" ||
                            (part == "content" && entry.text() == Model().text());
      EXPECT_EQ(Load(entry.Without(part)), optional) << part;
    }
  }
}

TEST_F(ContentItemTest, ElementsOfOtherNamespacesDoNotCount) {
  EXPECT_FALSE(Load(Model().With("id", "<m:id>1</m:id>")));
  EXPECT_FALSE(Load(Model().With("title", "<m:title>1</m:title>")));
  EXPECT_FALSE(Load(Model().With("link", "<m:link rel='a' href='b' type='c'/>")));
  EXPECT_FALSE(Load(Model().With("category", "<m:category term='a'/>")));
  EXPECT_FALSE(Load(Model().With("author", "<author><m:name/><uri/></author>")));
  EXPECT_FALSE(Load(Model().With("author", "<author><name/><m:uri/></author>")));
  EXPECT_FALSE(Load(Model().With("group", "<group><m:thumbnail url='a'/></group>")));
  const std::string group = Tag("m:group", "<thumbnail url='a'/>" + Rendition("?rtyp=k2"));
  EXPECT_FALSE(Load(Model().With("group", group)));
  EXPECT_TRUE(Load(Model().With("flags",
                                "<dynamicComponent>true</dynamicComponent>"
                                "<m:classifiedComponent>1</m:classifiedComponent>")));
  EXPECT_FALSE(item.dynamic_component_);
  EXPECT_FALSE(item.classified_component_);
}

TEST_F(ContentItemTest, EmptyTextsArePresent) {
  EXPECT_TRUE(Load(Model().With("id", "<id/>").With("title", "<title/>").With("summary", "")));
  EXPECT_EQ(item.id_, "");
  EXPECT_EQ(item.summary_, "");
  EXPECT_TRUE(Load(Model().With("author", "<author><name/><uri/></author>")));
}

TEST_F(ContentItemTest, OnlyTheTermOfAModelMakesAModel) {
  const std::string schema = kSchema;
  EXPECT_TRUE(LoadCategory(Term(kModelTerm)));
  EXPECT_EQ(item.kind_, kModel);
  for (const std::string& term : {schema + "#collection", schema + "#MODEL", schema + "#model ",
                                  schema + "#models", schema + "#", schema + ":#model", schema,
                                  std::string("#model"), std::string("model"), std::string()}) {
    // As a collection it lacks its feed.
    EXPECT_FALSE(LoadCategory(Term(term))) << term;
    EXPECT_EQ(item.kind_, kCollection) << term;
    EXPECT_TRUE(Load(Collection().With("category", Term(term)))) << term;
  }
}

TEST_F(ContentItemTest, OnlyTheFirstCategoryCounts) {
  const std::string model = Term(kModelTerm);
  EXPECT_TRUE(LoadCategory(model + Term("x")));
  EXPECT_EQ(item.kind_, kModel);
  EXPECT_TRUE(Load(Collection().With("category", Term("x") + model)));
  EXPECT_EQ(item.kind_, kCollection);
  EXPECT_FALSE(LoadCategory("<category/>" + model));
  EXPECT_FALSE(Load(Collection().With("category", "<category label='x'/>" + Term("x"))));
  EXPECT_EQ(item.kind_, kCollection);
}

TEST_F(ContentItemTest, OtherLinksAreIgnored) {
  const std::string schema = kSchema;
  const std::pair<std::string, const char*> links[] = {
      {kUserQuery, "text/html"},
      {schema + "#USER.QUERY", kAtom},
      {kUserQuery + "2", kAtom},
      {schema + ":user.query", kAtom},
      {"#user.query", kAtom},
      {"user.query", kAtom},
      {"alternate", kAtom},
      {"Alternate", "text/html"},
      {"alternate", "text/HTML"},
      {"self", kAtom},
      {"", ""},
  };
  for (const auto& [rel, type] : links) {
    EXPECT_TRUE(LoadLinks(Link(rel, "X", type))) << rel;
    EXPECT_EQ(item.user_query_url_, "") << rel;
    EXPECT_EQ(item.html_url_, "") << rel;
  }
}

TEST_F(ContentItemTest, TheLastMatchingLinkWins) {
  EXPECT_TRUE(LoadLinks(Link(kUserQuery, "Q1", kAtom) + Link("alternate", "H1", "text/html") +
                        Link("alternate", "H2", "text/html") + Link(kUserQuery, "Q2", kAtom) +
                        Link("self", "X", kAtom)));
  EXPECT_EQ(item.user_query_url_, "Q2");
  EXPECT_EQ(item.html_url_, "H2");
}

TEST_F(ContentItemTest, OneIncompleteLinkRejectsTheEntry) {
  const std::string good = Link("alternate", "H", "text/html");
  for (const char* const bad : {"<link rel='a' href='b'/>", "<link rel='a' type='c'/>",
                                "<link href='b' type='c'/>", "<link/>"}) {
    EXPECT_FALSE(LoadLinks(bad + good)) << bad;
    EXPECT_EQ(item.html_url_, "H") << bad;
    EXPECT_FALSE(LoadLinks(good + bad)) << bad;
    EXPECT_EQ(item.html_url_, "H") << bad;
    EXPECT_FALSE(LoadLinks(bad)) << bad;
  }
}

TEST_F(ContentItemTest, ACollectionsFeedIsTheSourceWithASuffix) {
  for (const char* const source : {"", "http://a/", "http://a/?x=y", "http://a/?x=y#z", "&amp;"}) {
    EXPECT_TRUE(Load(Collection().With(
        "content", "<content type='application/atom+xml' src='" + std::string(source) + "'/>")));
    const std::string written = std::string(source) == "&amp;" ? "&" : source;
    EXPECT_EQ(item.collection_feed_url_, Text(written + "&q=is:downloadable"));
  }
}

TEST_F(ContentItemTest, ACollectionsFirstContentMustBeAFeedWithASource) {
  const std::string good = "<content type='application/atom+xml' src='S'/>";
  for (const char* const bad :
       {"<content/>", "<content src='S'/>", "<content type='application/atom+xml'/>",
        "<content type='text/html' src='S'/>", "<content type='Application/atom+xml' src='S'/>",
        "<m:content type='application/atom+xml' src='S'/>"}) {
    EXPECT_FALSE(Load(Collection().With("content", bad))) << bad;
    EXPECT_EQ(item.collection_feed_url_, "") << bad;
  }
  EXPECT_FALSE(Load(Collection().With("content", "<content/>" + good)));
  EXPECT_TRUE(Load(Collection().With("content", good + "<content/>")));
}

TEST_F(ContentItemTest, AuthorIdIsTheParameterOfTheUri) {
  const std::pair<const char*, const char*> uris[] = {
      {"http://a/?uq=1234&amp;x=y", "1234"},
      {"http://a/?uq=1234", "1234"},
      {"http://a/?x=y&amp;uq=1234&amp;uq=5", "1234"},
      {"http://a/", ""},
      {"", ""},
      {"http://a/?uq=", ""},
      {"http://a/?uq=&amp;x", ""},
      {"uq=1234", "1234"},
      {"http://a&amp;b/?xuq=5", "5"},
      {"http://a/?UQ=1", ""},
      {"http://a/?uq=1%26+2#3", "1%26+2#3"},
      {"http://a/?uq=uq=2", "uq=2"}};
  for (const auto& [uri, id] : uris) {
    EXPECT_TRUE(Load(Model().With("author", "<author><name/>" + Tag("uri", uri) + "</author>")))
        << uri;
    EXPECT_EQ(item.author_id_, id) << uri;
  }
}

TEST_F(ContentItemTest, TheFirstAuthorCounts) {
  const auto load = [this](const char* first, const char* second) {
    return Load(Model().With("author", Tag("author", first) + Tag("author", second)));
  };
  EXPECT_TRUE(load("<name>1</name><uri>u</uri>", "<name>2</name>"));
  EXPECT_EQ(item.author_name_, "1");
  EXPECT_FALSE(load("<uri>u?uq=9</uri>", "<name>2</name><uri>v</uri>"));
  EXPECT_EQ(item.author_uri_, "u?uq=9");
  EXPECT_EQ(item.author_id_, "9");
  EXPECT_FALSE(Load(Model().With("author", "<author><name>3</name></author>")));
  EXPECT_EQ(item.author_name_, "3");
}

TEST_F(ContentItemTest, FlagsAreBooleansAndFalseWhenAbsent) {
  const std::pair<const char*, bool> texts[] = {{"true", true},  {"1", true}, {"false", false},
                                                {"0", false},    {"", false}, {"yes", false},
                                                {" true ", true}};
  for (const auto& [text, expected] : texts) {
    EXPECT_TRUE(Load(Model().With("flags", Tag("s:dynamicComponent", text))));
    EXPECT_EQ(item.dynamic_component_, expected) << text;
    EXPECT_FALSE(item.classified_component_) << text;
    EXPECT_TRUE(Load(Model().With("flags", Tag("s:classifiedComponent", text))));
    EXPECT_EQ(item.classified_component_, expected) << text;
    EXPECT_FALSE(item.dynamic_component_) << text;
  }
}

}  // namespace
}  // namespace stowra_test
