// A page of search results from the content service.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_

#include <vector>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// One page of search results, read from an Atom feed (RFC 4287) with OpenSearch RSS 1.0 counts.
// Owns its items: what items_ points to stays valid until the next Clear, Load, QueryFeed or
// destruction. Pages are turned by passing next_url_ or previous_url_ to QueryFeed.
//
// For one thread at a time; QueryFeed blocks it for the whole download. The order, the types and
// the initial values of the members are part of the binary interface.
class STOWRA_EXPORT ContentQuery {
 public:
  ContentQuery();
  ~ContentQuery();

  ContentQuery(const ContentQuery&) = delete;
  ContentQuery& operator=(const ContentQuery&) = delete;

  // Deletes the items and gives every member but max_qmf_version_ its initial value.
  void Clear();

  bool HasResults();

  // Whether there is a page behind or before this one. A page without results has neither.
  bool NextValid();
  bool BackValid();

  // Downloads `url` and loads the body, whatever the HTTP status. False with the contents unchanged
  // when `url` is empty or nothing was received, want of memory among the reasons; else as Load.
  bool QueryFeed(const ovrant::utils::ovrant_ustring& url);

  // Replaces the contents by the feed in `data`, which stays the caller's: `length` bytes that
  // Get_IXMLInput opens. False, with the query empty, when it is no Atom feed with a title and all
  // three counts, or memory runs out. An entry that ContentItem::Load refuses for another reason is
  // left out.
  bool Load(unsigned char* data, int length);

  int total_results_;                       // of the whole search; 0 at first
  int start_index_;                         // of the first result here, from 1; 1 at first
  int items_per_page_;                      // 12 at first
  int max_qmf_version_ = 0;                 // given to each item before it is read
  ovrant::utils::ovrant_ustring next_url_;  // feeds; empty where there is none
  ovrant::utils::ovrant_ustring previous_url_;
  ovrant::utils::ovrant_ustring self_url_;
  ovrant::utils::ovrant_ustring html_url_;  // the same results as a web page
  ovrant::utils::ovrant_ustring title_;     // without the search operators
  std::vector<ContentItem*> items_;         // owned, in the order of the feed
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_
