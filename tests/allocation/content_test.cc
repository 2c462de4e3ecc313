// SPDX-License-Identifier: MIT
// Searching and uploading.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/allocation/each_failure.h"
#include "tests/content/feed_text.h"
#include "tests/platform/xml/document.h"
#include "tests/support/raw_server.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;

std::string Page() {
  return Feed()
      .With("links", Link("next", "http://a/a-long-url", "application/atom+xml"))
      .With("entries", Model().text() + Collection().text())
      .text();
}

void ExpectEmpty(const ContentQuery& query) {
  EXPECT_TRUE(query.items_.empty());
  EXPECT_EQ(query.title_, "");
  EXPECT_EQ(query.next_url_, "");
  EXPECT_EQ(query.total_results_, 0);
  EXPECT_EQ(query.start_index_, 1);
}

struct Loaded : ContentQuery {
  Loaded() { EXPECT_TRUE(LoadText(Page(), *this)); }
};

TEST(ContentAllocationTest, AQueryThatCannotLoadIsEmpty) {
  Bytes page(Page());
  const auto load = [&](Loaded& query) { return query.Load(page.data(), page.length()); };
  const auto check = [&](Loaded& query, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_TRUE(outcome.result || outcome.failed());
    EXPECT_EQ(query.items_.size(), outcome.result ? 2U : 0U);
    if (!outcome.result) ExpectEmpty(query);
    EXPECT_TRUE(load(query));
    EXPECT_EQ(query.items_.size(), 2U);
  };
  EXPECT_GT(FailEachAllocation<Loaded>(load, check), 40);
}

// A failed download leaves the query unchanged. A body that cannot be loaded empties it.
TEST(ContentAllocationTest, AQueryThatCannotAskIsFalse) {
  const RawServer server(Always(Response(200, Page())));
  const ovrant_ustring url = Text(server.Url());
  const auto ask = [&](Loaded& query) { return query.QueryFeed(url); };
  const auto check = [&](Loaded& query, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_TRUE(outcome.result || outcome.failed());
    if (!outcome.result && query.items_.empty()) ExpectEmpty(query);
    EXPECT_EQ(query.items_.size(), query.items_.empty() ? 0U : 2U);
    EXPECT_TRUE(ask(query));
    EXPECT_EQ(query.items_.size(), 2U);
  };
  EXPECT_GT(FailEachAllocation<Loaded>(ask, check), 60);
}

XmlDocument AtEntry(const std::string& feed) {
  XmlDocument document(feed);
  EXPECT_TRUE(document.Find("http://www.w3.org/2005/Atom:feed"));
  EXPECT_TRUE(document.Find("http://www.w3.org/2005/Atom:entry"));
  return document;
}

TEST(ContentAllocationTest, AnItemThatCannotLoadIsFalse) {
  struct Entry {
    XmlDocument document;
    ContentItem item;
  };
  for (const std::string& entry : {Model().text(), Collection().text()}) {
    const auto make = [&] { return Entry{AtEntry(FeedOf(entry)), {}}; };
    const auto load = [](Entry& state) { return state.item.Load(&state.document.reader()); };
    const auto check = [&](Entry& state, Outcome outcome) {
      EXPECT_FALSE(outcome.threw);
      EXPECT_EQ(outcome.result, !outcome.failed());
      state.document = AtEntry(FeedOf(entry));
      EXPECT_TRUE(load(state));
      EXPECT_FALSE(state.item.title_.empty());
    };
    EXPECT_GT(FailEachAllocationOf(make, load, check), 20);
  }
}

const char kConfig[] =
    "<upload><successUrl>http://success/long</successUrl><failureUrl>http://failure/long"
    "</failureUrl><files><file><uploadUrl>http://upload/?long=yes</uploadUrl><type>t</type></file>"
    "<file><uploadUrl>http://upload/?long=yes</uploadUrl><type>t</type></file></files></upload>";

TEST(ContentAllocationTest, AConfigurationThatCannotBeParsedIsFalse) {
  Bytes document(kConfig);
  const auto parse = [&](UploadConfig& config) {
    return config.ParseResponse(document.data(), document.size());
  };
  const auto check = [&](UploadConfig& config, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(outcome.result, !outcome.failed());
    config.Clear();
    EXPECT_TRUE(parse(config));
    EXPECT_EQ(config.files_.size(), 2U);
  };
  EXPECT_GT(FailEachAllocation<UploadConfig>(parse, check), 20);
}

TEST(ContentAllocationTest, AConfigurationThatCannotBeFetchedIsEmpty) {
  const RawServer server(Always(Response(200, kConfig)));
  const auto ask = [](UploadConfig& config) { return config.SynchronousQuery(); };
  const auto check = [&](UploadConfig& config, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_TRUE(outcome.result || outcome.failed());
    EXPECT_EQ(config.files_.size(), outcome.result ? 2U : 0U);
    EXPECT_EQ(config.success_url_.empty(), !outcome.result);
    config.Clear();
    EXPECT_TRUE(ask(config));
  };
  const auto make_with_url = [&] {
    UploadConfig config;
    config.Init(Text(server.Url("/a-long-target")));
    return config;
  };
  EXPECT_GT(FailEachAllocationOf(make_with_url, ask, check), 60);
}

constexpr char kBoundary[] = "BrevixClient0385119264730052";

UploadFile LongFile() {
  UploadFile file;
  file.file_path_ = "/a/long/path/to/a/file/with/a/long/name.qmf";
  file.upload_url_ = "http://upload/?name=a-long-name&type=a-long-type&task=a-long-task";
  return file;
}

// The other functions throw and leak nothing.
TEST(ContentAllocationTest, OtherFunctionsThrow) {
  const UploadFile file = LongFile();
  const auto url = Text("http://a/?mid=0123456789abcdef0123456789&x=y");
  const auto header = Text("attachment; filename=\"a-name-that-is-long.qmf\"");
  const auto rendition = Text("s" + std::string(40, '0') + "7");
  const std::string boundary = kBoundary;
  UploadConfig config;
  ASSERT_TRUE(config.ParseResponse(Bytes(kConfig).data(), sizeof(kConfig) - 1));
  using namespace ovrant::stowraapiclient;                   // NOLINT(google-build-using-namespace)
  using namespace ovrant::stowraapiclient::multipartupload;  // NOLINT(google-build-using-namespace)
  int version = 0;
  EXPECT_GT(FailCall([&] { GetStowraIdFromUrl(url); }), 0);
  EXPECT_GT(FailCall([&] { GetFilenameFromContentDisposition(header); }), 0);
  EXPECT_GT(FailCall([&] { CreateHeaderDictionary(boundary, 1); }), 0);
  EXPECT_GT(FailCall([] { GetBoundaryString(); }), 0);
  EXPECT_GT(FailCall([&] { const UploadFile copy(file); }), 0);
  EXPECT_GT(FailCall([&] { const UploadConfig copy(config); }), 0);
  EXPECT_GT(FailCall([&] { ContentItem().ExtractQmfVersionFromRTypValue(rendition, version); }), 0);
  EXPECT_EQ(version, 7);
}

// A stream without memory shows that in its state.
TEST(ContentAllocationTest, ABodyThatCannotBeWrittenThrowsOrMarksTheStream) {
  struct Body {
    std::stringstream stream;
  };
  UploadFile file = LongFile();
  const ovrant_ustring subject("a subject that is long");
  Bytes content(std::string(10'000, 'c'));
  const auto write = [&](Body& body) {
    ovrant::stowraapiclient::multipartupload::SetupPayload(subject, &file, content.data(),
                                                           content.size(), kBoundary, &body.stream);
  };
  Body whole;
  write(whole);
  const std::string expected = whole.stream.str();
  const auto check = [&](Body& body, Outcome outcome) {
    EXPECT_TRUE(outcome.threw || !body.stream.good() || body.stream.str() == expected);
    EXPECT_TRUE(outcome.failed() || body.stream.str() == expected);
    Body again;
    write(again);
    EXPECT_EQ(again.stream.str(), expected);
  };
  EXPECT_GT(FailEachAllocation<Body>(write, check), 20);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
