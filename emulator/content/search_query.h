// SPDX-License-Identifier: MIT
// The parameters of a search.

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

// Throws a RequestError with status 400 if a parameter is unknown or not readable.
SearchQuery ReadSearchQuery(const httplib::Request& request);

// The search expression for the index, with every word of `text` that the index can hold. The last
// word matches as a prefix. Quotation marks keep words from being operators of the index. Empty if
// there is no such word.
std::string MatchExpression(const std::string& text, const Tokenizer& tokenizer);

// `path` followed by `query` as parameters.
std::string SearchAddress(const std::string& path, const SearchQuery& query);

// The query for the next or previous page, which must exist. `total` counts all results.
SearchQuery NextPage(const SearchQuery& query);
SearchQuery PreviousPage(const SearchQuery& query, int total);

bool HasNextPage(const SearchQuery& query, int total);
bool HasPreviousPage(const SearchQuery& query, int total);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_SEARCH_QUERY_H_
