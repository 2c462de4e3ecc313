// Who owns what, and each allocation failing in turn.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/content/feed_text.h"
#include "tests/support/failing_new.h"

#ifdef STOWRA_COUNTS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;

TEST(ThumbnailTest, AnItemDeletesItsThumbnailAsAnArray) {
  const long arrays = LiveArrays();
  const long allocations = LiveAllocations();
  {
    ContentItem item;
    item.SetThumbnailBuffer(3, new unsigned char[3]);
    EXPECT_EQ(LiveArrays(), arrays + 1);
  }
  EXPECT_EQ(LiveArrays(), arrays);
  EXPECT_EQ(LiveAllocations(), allocations);
}

TEST(ThumbnailTest, ANewThumbnailReplacesTheOldOne) {
  const long arrays = LiveArrays();
  ContentItem item;
  item.SetThumbnailBuffer(1, new unsigned char[1]);
  auto* const second = new unsigned char[2];
  item.SetThumbnailBuffer(2, second);
  EXPECT_EQ(LiveArrays(), arrays + 1);
  EXPECT_EQ(item.thumbnail_size_, 2);
  EXPECT_EQ(item.thumbnail_buffer_, second);

  item.SetThumbnailBuffer(7, nullptr);
  EXPECT_EQ(LiveArrays(), arrays);
  EXPECT_EQ(item.thumbnail_size_, 7);
  EXPECT_EQ(item.thumbnail_buffer_, nullptr);
  item.SetThumbnailBuffer(0, nullptr);
  EXPECT_EQ(item.thumbnail_size_, 0);
}

TEST(ThumbnailTest, ClearLetsTheThumbnailGoAndDoesNotDeleteIt) {
  const long arrays = LiveArrays();
  ContentItem item;
  item.SetThumbnailBuffer(1, new unsigned char[1]{42});
  const std::unique_ptr<unsigned char[]> mine(item.thumbnail_buffer_);
  item.Clear();
  EXPECT_EQ(item.thumbnail_size_, 0);
  EXPECT_EQ(item.thumbnail_buffer_, nullptr);
  EXPECT_EQ(LiveArrays(), arrays + 1);
  EXPECT_EQ(mine[0], 42);
}

TEST(ThumbnailTest, ClearKeepsTheNewestVersion) {
  ContentItem item;
  item.max_qmf_version_ = 9;
  item.Clear();
  EXPECT_EQ(item.max_qmf_version_, 9);
}

TEST(QueryMemoryTest, AQueryDeletesItsItemsAndTheirThumbnails) {
  const std::string page = FeedOf(Model().text() + Collection().text() + "<entry/>");
  const auto fill = [&page](ContentQuery& query) {
    EXPECT_TRUE(LoadText(page, query));
    for (ContentItem* const item : query.items_) {
      item->SetThumbnailBuffer(5, new unsigned char[5]);
    }
  };
  const long arrays = LiveArrays();
  {
    ContentQuery warm_up;
    fill(warm_up);
  }
  const long allocations = LiveAllocations();
  {
    ContentQuery query;
    fill(query);
    fill(query);
    EXPECT_EQ(LiveArrays(), arrays + 2);
    query.Clear();
    EXPECT_EQ(LiveArrays(), arrays);
    fill(query);
    EXPECT_FALSE(LoadText("no", query));
    EXPECT_EQ(LiveArrays(), arrays);
    fill(query);
  }
  EXPECT_EQ(LiveArrays(), arrays);
  EXPECT_EQ(LiveAllocations(), allocations);
}

TEST(QueryMemoryTest, AQueryIsEmptyWhicheverAllocationOfALoadFails) {
  DocumentBytes page(Feed()
                         .With("links", Link("next", "http://a/a-long-url", "application/atom+xml"))
                         .With("entries", Model().text() + Collection().text())
                         .text());
  {
    ContentQuery warm_up;
    ASSERT_TRUE(warm_up.Load(page.data(), page.length()));
  }
  const long allocations = LiveAllocations();
  bool loaded = false;
  long allowed = 0;
  for (; !loaded; ++allowed) {
    ContentQuery query;
    ASSERT_TRUE(query.Load(page.data(), page.length()));
    const bool threw =
        RunsOutOfMemory([&] { loaded = query.Load(page.data(), page.length()); }, allowed);
    if (loaded) break;
    EXPECT_TRUE(query.items_.empty()) << allowed << (threw ? " thrown" : "");
    EXPECT_EQ(query.title_, "") << allowed;
    EXPECT_EQ(query.next_url_, "") << allowed;
    EXPECT_EQ(query.total_results_, 0) << allowed;
    EXPECT_EQ(query.start_index_, 1) << allowed;
  }
  EXPECT_GT(allowed, 20);
  EXPECT_EQ(LiveAllocations(), allocations);
}

TEST(UploadMemoryTest, AFailingAllocationIsAFailedParse) {
  DocumentBytes document(
      "<upload><successUrl>http://success/long</successUrl><failureUrl>f</failureUrl><files>"
      "<file><uploadUrl>http://upload/?long=yes</uploadUrl><type>t</type></file><file>"
      "<uploadUrl>http://upload/?long=yes</uploadUrl><type>t</type></file></files></upload>");
  const long allocations = LiveAllocations();
  bool parsed = false;
  long allowed = 0;
  for (; !parsed; ++allowed) {
    UploadConfig config;
    EXPECT_FALSE(RunsOutOfMemory(
        [&] { parsed = config.ParseResponse(document.data(), document.size()); }, allowed))
        << allowed;
  }
  EXPECT_GT(allowed, 10);
  EXPECT_EQ(LiveAllocations(), allocations);
}

TEST(UploadMemoryTest, AFailingAllocationIsAFailedQuery) {
  UploadConfig config;
  for (long allowed = 0; allowed < 2; ++allowed) {
    config.url_ = "http://127.0.0.1/a/url/that/is/copied/into/its/transport";
    config.success_url_ = "old";
    config.files_.resize(1);
    bool succeeded = true;
    EXPECT_FALSE(RunsOutOfMemory([&] { succeeded = config.SynchronousQuery(); }, allowed))
        << allowed;
    EXPECT_FALSE(succeeded) << allowed;
    EXPECT_EQ(config.success_url_, "") << allowed;
    EXPECT_TRUE(config.files_.empty()) << allowed;
  }
}

// The others throw, and leave nothing behind.
TEST(UploadMemoryTest, AFailingAllocationOfAnotherFunctionIsThrown) {
  UploadFile file;
  file.file_path_ = "/a/long/path/to/a/file/with/a/long/name.qmf";
  file.upload_url_ = "http://upload/?name=a-long-name&type=a-long-type&task=a-long-task";
  const auto url = Text("http://a/?mid=0123456789abcdef0123456789&x=y");
  const auto header = Text("attachment; filename=\"a-name-that-is-long.qmf\"");
  const std::string boundary = "BrevixClient0385119264730052";
  using namespace ovrant::stowraapiclient;                   // NOLINT(google-build-using-namespace)
  using namespace ovrant::stowraapiclient::multipartupload;  // NOLINT(google-build-using-namespace)
  const std::function<void()> calls[] = {
      [&] { GetStowraIdFromUrl(url); }, [&] { GetFilenameFromContentDisposition(header); },
      [&] { CreateHeaderDictionary(boundary, 1); }, [&] { GetBoundaryString(); },
      [&] { const UploadFile copy(file); }};
  for (const std::function<void()>& call : calls) {
    call();
    const long allocations = LiveAllocations();
    long allowed = 0;
    while (RunsOutOfMemory(call, allowed)) ++allowed;
    EXPECT_GT(allowed, 0);
    EXPECT_EQ(LiveAllocations(), allocations);
  }
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS
