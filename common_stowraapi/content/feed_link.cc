// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/feed_link.h"

#include "common_stowraapi/content/feed_names.h"

namespace ovrant::stowraapiclient {

bool ReadLink(IXMLInput& reader, FeedLink& link) {
  const FeedNames& names = FeedNames::Get();
  return reader.GetAttribute(names.rel, link.rel) && reader.GetAttribute(names.href, link.href) &&
         reader.GetAttribute(names.type, link.type);
}

}  // namespace ovrant::stowraapiclient
