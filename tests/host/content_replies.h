// SPDX-License-Identifier: MIT
// Builds the replies of a content service.

#ifndef TESTS_HOST_CONTENT_REPLIES_H_
#define TESTS_HOST_CONTENT_REPLIES_H_

#include <string>
#include <vector>

namespace stowra_test {

// A model. Its renditions k2 and s7 are at http://f/ID.kmz and http://f/ID.qmf.
std::string ModelEntry(const std::string& id, const std::string& title);

// A collection, with all optional members.
std::string CollectionEntry(const std::string& id, const std::string& title);

struct FeedText {
  std::vector<std::string> entries;
  int total = 0;
  int start = 1;
  int per_page = 12;
  std::string next = {};  // empty: no link
  std::string previous = {};
};
std::string Feed(const FeedText& feed);

struct ConfigFile {
  std::string url;
  bool zipped = false;
};

// An upload configuration whose result pages are http://r/yes and http://r/no.
std::string Config(const std::vector<ConfigFile>& files);

}  // namespace stowra_test

#endif  // TESTS_HOST_CONTENT_REPLIES_H_
