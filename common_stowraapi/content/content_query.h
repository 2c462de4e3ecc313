// SPDX-License-Identifier: MIT
// A page of search results from the content service.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_

#include <vector>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// One page of search results, read from an Atom feed (RFC 4287) with OpenSearch RSS 1.0 counts.
// Owns its items: pointers from items_ stay valid until the next Clear, Load, QueryFeed or
// destruction. To turn the page, pass next_url_ or previous_url_ to QueryFeed.
//
// For one thread at a time; QueryFeed blocks it for the whole download. Throws nothing. The order,
// the types and the initial values of the members are part of the binary interface.
class STOWRA_EXPORT ContentQuery {
 public:
  ContentQuery();
  ~ContentQuery();

  ContentQuery(const ContentQuery&) = delete;
  ContentQuery& operator=(const ContentQuery&) = delete;

  // Deletes the items and gives every member but max_qmf_version_ its initial value.
  void Clear();

  bool HasResults();

  // Whether there is a next or a previous page. False when this page has no results.
  bool NextValid();
  bool BackValid();

  // Downloads `url` and loads the body, whatever the HTTP status. False, with the contents
  // unchanged, when `url` is empty, the download fails or memory runs out before Load. Otherwise
  // the result of Load; a body that is too long for the XML reader counts as no feed.
  bool QueryFeed(const ovrant::utils::ovrant_ustring& url);

  // Replaces the contents by the feed in `data`: `length` bytes, which stay the caller's, in an
  // encoding that Get_IXMLInput reads. Leaves out entries that ContentItem::Load rejects. False,
  // and the query is empty, in these cases:
  //   - `data` is null or `length` is not positive.
  //   - The bytes are not an Atom feed with a title and all three counts.
  //   - Memory runs out.
  // Get_IXMLInput says how long a document may be.
  bool Load(unsigned char* data, int length);

  int total_results_;                       // of the whole search; 0 at first
  int start_index_;                         // of the first result here, from 1; 1 at first
  int items_per_page_;                      // 12 at first
  int max_qmf_version_ = 0;                 // given to each item before it is read
  ovrant::utils::ovrant_ustring next_url_;  // a feed; empty if absent
  ovrant::utils::ovrant_ustring previous_url_;
  ovrant::utils::ovrant_ustring self_url_;
  ovrant::utils::ovrant_ustring html_url_;  // the same results as a web page
  ovrant::utils::ovrant_ustring title_;     // without the search operators
  std::vector<ContentItem*> items_;         // owned, in the order of the feed
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_QUERY_H_
