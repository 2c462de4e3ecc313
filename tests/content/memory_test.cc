// SPDX-License-Identifier: MIT
// Ownership of items and thumbnails.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common_stowraapi/platform/xml_input.h"
#include "tests/content/feed_text.h"
#include "tests/support/failing_new.h"

#ifdef STOWRA_COUNTS_ALLOCATIONS

namespace stowra_test {
namespace {

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

TEST(ThumbnailTest, LoadLetsTheThumbnailGoToo) {
  const long arrays = LiveArrays();
  ContentItem item;
  item.SetThumbnailBuffer(1, new unsigned char[1]{42});
  const std::unique_ptr<unsigned char[]> mine(item.thumbnail_buffer_);
  Bytes bytes(FeedOf(Model().text()));
  const std::unique_ptr<ovrant::IXMLInput> reader(
      ovrant::Get_IXMLInput(bytes.data(), bytes.length()));
  EXPECT_FALSE(item.Load(reader.get()));
  EXPECT_EQ(item.thumbnail_buffer_, nullptr);
  EXPECT_EQ(LiveArrays(), arrays + 1);
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

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS
