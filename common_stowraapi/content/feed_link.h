// SPDX-License-Identifier: MIT
// Reads the links of a feed and of its entries.

#ifndef COMMON_STOWRAAPI_CONTENT_FEED_LINK_H_
#define COMMON_STOWRAAPI_CONTENT_FEED_LINK_H_

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

// An Atom link (RFC 4287, 4.2.7).
struct FeedLink {
  ovrant::utils::ovrant_ustring rel;
  ovrant::utils::ovrant_ustring href;
  ovrant::utils::ovrant_ustring type;

  bool Is(const ovrant::utils::ovrant_ustring& relation,
          const ovrant::utils::ovrant_ustring& content_type) const {
    return rel == relation && type == content_type;
  }
};

// Reads the link at which `reader` stands. False if an attribute is missing; `link` then holds
// those before it.
bool ReadLink(IXMLInput& reader, FeedLink& link);

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_FEED_LINK_H_
