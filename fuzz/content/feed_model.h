// SPDX-License-Identifier: MIT
// A second reader of search feeds, over a tree.

#ifndef FUZZ_CONTENT_FEED_MODEL_H_
#define FUZZ_CONTENT_FEED_MODEL_H_

#include <string>
#include <vector>

#include "fuzz/platform/xml/tree.h"

namespace stowra_fuzz {

// The texts are UTF-8.
struct ItemModel {
  int kind = 1;
  int download_format = 0;
  std::string id;
  std::string title;
  std::string summary;
  std::string author_name;
  std::string author_uri;
  std::string user_query_url;
  std::string author_id;
  std::string thumbnail_url;
  std::string download_url;
  std::string collection_feed_url;
  std::string html_url;
  bool dynamic_component = false;
  bool classified_component = false;
};

struct FeedModel {
  int total_results = 0;
  int start_index = 1;
  int items_per_page = 12;
  std::string next_url;
  std::string previous_url;
  std::string self_url;
  std::string html_url;
  std::string title;
  std::vector<ItemModel> items;
};

// Whether the entry is complete. `item` holds what could be read in either case.
bool ReadEntry(const XmlNode& entry, int max_qmf_version, ItemModel& item);

// Whether the document is a feed. If not, `feed` is unchanged.
bool ReadFeed(const XmlNode& document, int max_qmf_version, FeedModel& feed);

// The names that the library asks a reader for.
extern const char* const kFeedName;
extern const char* const kEntryName;

}  // namespace stowra_fuzz

#endif  // FUZZ_CONTENT_FEED_MODEL_H_
