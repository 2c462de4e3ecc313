// SPDX-License-Identifier: MIT
// All fields of a feed as texts, to compare what two libraries read.

#ifndef BENCHMARKS_CONTENT_FEED_FIELDS_H_
#define BENCHMARKS_CONTENT_FEED_FIELDS_H_

#include <string>
#include <vector>

#include "benchmarks/content/feed_record.h"
#include "benchmarks/content/qt_feed.h"
#include "common_stowraapi/content/content_query.h"

namespace stowra_bench {

// The feed's own fields, then those of each item.
using FeedFields = std::vector<std::string>;

FeedFields FieldsOf(const ovrant::stowraapiclient::ContentQuery& query);
FeedFields FieldsOf(const StdFeed& feed);
FeedFields FieldsOf(const QtFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_FEED_FIELDS_H_
