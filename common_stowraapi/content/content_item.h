// SPDX-License-Identifier: MIT
// One search result of the content service.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_

#include "common_stowraapi/content/content_schema.h"
#include "common_stowraapi/content/item_values.h"
#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant {
class IXMLInput;
}  // namespace ovrant

namespace ovrant::stowraapiclient {

// A model or a collection, read from an Atom entry (RFC 4287) with Media RSS renditions. The host
// may add a thumbnail image later. For one thread at a time. The order, the types and the initial
// values of the members are part of the binary interface.
class STOWRA_EXPORT ContentItem {
 public:
  ContentItem();

  // Deletes the thumbnail.
  ~ContentItem();

  ContentItem(const ContentItem&) = delete;
  ContentItem& operator=(const ContentItem&) = delete;

  // Gives every member but max_qmf_version_ its initial value. Does not delete the thumbnail: the
  // host takes it away first, or drops it with SetThumbnailBuffer(0, nullptr).
  void Clear();

  // Deletes the old thumbnail and takes ownership of `buffer`: `size` bytes from new[], or null.
  void SetThumbnailBuffer(int size, unsigned char* buffer);

  // Clears the item and reads the entry at which `reader`, which must not be null, stands. True
  // when the entry is complete:
  //   - It has an id and a title.
  //   - It has a category with a term.
  //   - It has an author with name and uri.
  //   - It has at least one link. Each has rel, href and type.
  //   - It has a group with at least one thumbnail. Each has a url.
  //   - A model has at least one content in the group. Each has url and type.
  //   - One of a model's contents can be downloaded.
  //   - A collection has a content with a src and a feed's type.
  //
  // False otherwise; the item then holds what was read. Without a group nothing in it is read.
  // False too when memory runs out; `reader` may then stand inside the entry. In every other case
  // it stands at the entry again.
  bool Load(ovrant::IXMLInput* reader);

  // Reads the model-file version from the value of "rtyp": 7 from "s7", 5 from "s". A version
  // beyond 32 bits is 0. False for any other value, and `version` is unchanged. May throw
  // std::bad_alloc.
  bool ExtractQmfVersionFromRTypValue(ovrant::utils::ovrant_ustring value, int& version);

  int kind_;             // an ItemKind
  int download_format_;  // a DownloadFormat: what download_url_ holds
  ovrant::utils::ovrant_ustring id_;
  ovrant::utils::ovrant_ustring title_;
  ovrant::utils::ovrant_ustring summary_;
  ovrant::utils::ovrant_ustring author_name_;
  ovrant::utils::ovrant_ustring author_uri_;
  ovrant::utils::ovrant_ustring user_query_url_;  // a feed of related results
  ovrant::utils::ovrant_ustring author_id_;       // the parameter "uq" of author_uri_
  ovrant::utils::ovrant_ustring thumbnail_url_;
  ovrant::utils::ovrant_ustring download_url_;         // models only
  ovrant::utils::ovrant_ustring collection_feed_url_;  // collections only
  ovrant::utils::ovrant_ustring html_url_;             // the item's web page
  bool dynamic_component_;
  bool classified_component_;
  int thumbnail_size_;               // bytes
  unsigned char* thumbnail_buffer_;  // owned, from new[]; may be null
  int max_qmf_version_ = 0;          // newest model-file version that the host opens
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_
