// SPDX-License-Identifier: MIT
// The record that the peer libraries read a feed into. It has the fields of ContentQuery and
// ContentItem, with each library's own text type.

#ifndef BENCHMARKS_CONTENT_FEED_RECORD_H_
#define BENCHMARKS_CONTENT_FEED_RECORD_H_

#include <string>
#include <vector>

namespace stowra_bench {

enum class Kind { kModel, kCollection };
enum class DownloadFormat { kNone, kK2, kQmf };

template <typename Text>
struct FeedItem {
  Kind kind = Kind::kCollection;
  DownloadFormat download_format = DownloadFormat::kNone;
  Text id;
  Text title;
  Text summary;
  Text author_name;
  Text author_uri;
  Text user_query_url;
  Text author_id;
  Text thumbnail_url;
  Text download_url;
  Text collection_feed_url;
  Text html_url;
  bool dynamic_component = false;
  bool classified_component = false;
};

template <typename Text>
struct Feed {
  int total_results = 0;
  int start_index = 1;
  int items_per_page = 12;
  Text next_url;
  Text previous_url;
  Text self_url;
  Text html_url;
  Text title;
  std::vector<FeedItem<Text>> items;
};

using StdFeed = Feed<std::string>;
using StdFeedItem = FeedItem<std::string>;

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_FEED_RECORD_H_
