// SPDX-License-Identifier: MIT
// Reads the entries of a feed.

#ifndef COMMON_STOWRAAPI_CONTENT_ENTRY_READER_H_
#define COMMON_STOWRAAPI_CONTENT_ENTRY_READER_H_

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/feed_link.h"
#include "common_stowraapi/content/feed_names.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

// Reads entries, one after the other. Reuses the memory of its strings from entry to entry.
// `reader` must outlive it.
class EntryReader {
 public:
  explicit EntryReader(IXMLInput& reader) : reader_(reader) {}

  // Fills a cleared item from the entry at which the reader stands. See ContentItem::Load.
  bool Read(ContentItem& item);

 private:
  bool ReadCategory(ContentItem& item);
  bool ReadLinks(ContentItem& item);
  bool ReadCollectionFeed(ContentItem& item);
  bool ReadAuthor(ContentItem& item);
  bool ReadThumbnails(ContentItem& item);
  bool ReadDownload(ContentItem& item);
  void TakeDownloadIfBetter(ContentItem& item, int& best);

  IXMLInput& reader_;
  const FeedNames& names_ = FeedNames::Get();
  FeedLink link_;
  ovrant::utils::ovrant_ustring term_;
  ovrant::utils::ovrant_ustring url_;
  ovrant::utils::ovrant_ustring type_;
  ovrant::utils::ovrant_ustring rendition_;
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_ENTRY_READER_H_
