// One search result of the content service.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_

#include "common_stowraapi/content/content_schema.h"
#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant {
class IXMLInput;
}  // namespace ovrant

namespace ovrant::stowraapiclient {

// A model or a collection, read from an Atom entry (RFC 4287) with Media RSS renditions, and the
// thumbnail that the host loads for it later. For one thread at a time. The order, the types and
// the initial values of the members are part of the binary interface.
class STOWRA_EXPORT ContentItem {
 public:
  ContentItem();

  // Deletes the thumbnail.
  ~ContentItem();

  ContentItem(const ContentItem&) = delete;
  ContentItem& operator=(const ContentItem&) = delete;

  // Gives every member but max_qmf_version_ its initial value. The thumbnail is let go of and not
  // deleted: who has set one takes it away first.
  void Clear();

  // Deletes the thumbnail and takes over `buffer`, `size` bytes from new[], which may be null.
  void SetThumbnailBuffer(int size, unsigned char* buffer);

  // Clears the item and reads the entry on which `reader` stands, and stands again on return. True
  // when the entry has all that is needed to show and to fetch it:
  //   - id, title, category with a term, author with name and uri;
  //   - at least one link, and each with rel, href and type;
  //   - a group with at least one thumbnail, and each with a url;
  //   - a model: at least one content in the group, each with url and type, and among them one to
  //     download;
  //   - a collection: a content with a src, of the type of a feed.
  // False otherwise, with what could be read; without a group nothing of it has been read and
  // `reader` has not moved, either. False, too, for want of memory: the item is partly read then,
  // and `reader` stands somewhere in the entry.
  bool Load(ovrant::IXMLInput* reader);

  // The version of the model file that the rendition `value` holds: "s7" is 7 and "s" is 5. False
  // if it is no such rendition; `version` is then unchanged. A version beyond 32 bits is 0.
  bool ExtractQmfVersionFromRTypValue(ovrant::utils::ovrant_ustring value, int& version);

  int kind_;             // 0: a model; 1: a collection or anything else
  int download_format_;  // of download_url_: 0: none; 1: "k2"; 2: a model file of a known version
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
  int max_qmf_version_ = 0;          // newest model-file version to download
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_ITEM_H_
