// SPDX-License-Identifier: MIT
// Reads a feed with Qt's QXmlStreamReader.

#ifndef BENCHMARKS_CONTENT_QT_FEED_H_
#define BENCHMARKS_CONTENT_QT_FEED_H_

#include <QString>
#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

using QtFeed = Feed<QString>;
using QtFeedItem = FeedItem<QString>;

// Reads `document` into an empty feed. False if it is not a complete feed.
bool LoadWithQt(std::string_view document, int max_qmf_version, QtFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_QT_FEED_H_
