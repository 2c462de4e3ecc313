// What a search asks for.

#ifndef EMULATOR_CONTENT_SEARCH_QUERY_H_
#define EMULATOR_CONTENT_SEARCH_QUERY_H_

#include <httplib.h>

#include <string>

#include "emulator/content/tokenizer.h"

namespace stowra_emulator {

struct SearchQuery {
  std::string text;        // As sent, operators included.
  std::string author;      // The uid of a user; empty for all.
  std::string collection;  // The mid of a collection; empty for all.
  std::string except;      // The mid of a model to leave out.
  int start = 1;           // The number of the first result, from 1.
  int count = 12;          // Results on a page, at least 1.
};

// Throws RequestError, status 400.
SearchQuery ReadSearchQuery(const httplib::Request& request);

// What to search the index for: every word of `text` in which the index finds anything, the last
// one as a beginning, in quotation marks so that none has a meaning in the index's language. Empty
// when there is no such word.
std::string MatchExpression(const std::string& text, const Tokenizer& tokenizer);

// The path and query that ask for `query`.
std::string SearchAddress(const std::string& path, const SearchQuery& query);

// The query for the page after or before; requires that there is one. `total` counts all results.
SearchQuery NextPage(const SearchQuery& query);
SearchQuery PreviousPage(const SearchQuery& query, int total);

bool HasNextPage(const SearchQuery& query, int total);
bool HasPreviousPage(const SearchQuery& query, int total);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_SEARCH_QUERY_H_
