// The entries of a feed.

#ifndef COMMON_STOWRAAPI_CONTENT_ENTRY_READER_H_
#define COMMON_STOWRAAPI_CONTENT_ENTRY_READER_H_

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/feed_link.h"
#include "common_stowraapi/content/feed_names.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

// Reads entries, one after the other. What it only looks at goes into strings that keep their
// memory from one entry to the next. The reader must outlive it.
class EntryReader {
 public:
  explicit EntryReader(IXMLInput& reader) : reader_(reader) {}

  // Fills a cleared item from the entry on which the reader stands. False if the entry is not
  // complete enough to show; the item then holds what was read.
  bool Read(ContentItem& item);

 private:
  bool ReadCategory(ContentItem& item);
  bool ReadLinks(ContentItem& item);
  bool ReadCollectionFeed(ContentItem& item);
  bool ReadAuthor(ContentItem& item);
  bool ReadThumbnails(ContentItem& item);
  bool ReadDownload(ContentItem& item);
  bool IsBetterDownload(ContentItem& item, int& best);

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
