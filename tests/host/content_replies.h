// What a content service answers, written by the tests.

#ifndef TESTS_HOST_CONTENT_REPLIES_H_
#define TESTS_HOST_CONTENT_REPLIES_H_

#include <map>
#include <string>
#include <vector>

#include "tests/support/raw_server.h"

namespace stowra_test {

// A model with the renditions k2 and s7 at http://f/ID.kmz and http://f/ID.qmf.
std::string ModelEntry(const std::string& id, const std::string& title);

// A collection, with all optional members.
std::string CollectionEntry(const std::string& id, const std::string& title);

struct FeedText {
  std::vector<std::string> entries;
  int total = 0;
  int start = 1;
  int per_page = 12;
  std::string next;  // no link where it is empty
  std::string previous;
};
std::string Feed(const FeedText& feed);

struct ConfigFile {
  std::string url;
  bool zipped = false;
};

// An upload configuration whose result pages are http://r/yes and http://r/no.
std::string Config(const std::vector<ConfigFile>& files);

// A handler that gives each target its reply, and any other one status 404.
RawServer::Handler Routes(std::map<std::string, std::string> replies);

}  // namespace stowra_test

#endif  // TESTS_HOST_CONTENT_REPLIES_H_
