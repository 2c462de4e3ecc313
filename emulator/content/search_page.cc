// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/item_list.h"
#include "emulator/content/search_query.h"
#include "emulator/page/page.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

constexpr const char* kPath = "/search.html";

std::string HeadingOf(const SearchQuery& query, const ItemPage& results) {
  if (!query.text.empty()) return "Results for “" + query.text + "”";
  return results.description.empty() ? "All models and collections" : results.description;
}

std::string RangeOf(const SearchQuery& query, const ItemPage& results) {
  if (results.items.empty()) {
    return results.total == 0 ? "Nothing was found." : "There are no more results.";
  }
  const int last = query.start + static_cast<int>(results.items.size()) - 1;
  return std::to_string(query.start) + "–" + std::to_string(last) + " of " +
         std::to_string(results.total);
}

void WritePaging(MarkupWriter& page, const SearchQuery& query, int total) {
  page.Begin("nav", {{"aria-label", "Pages"}});
  page.Begin("span");
  if (HasPreviousPage(query, total)) {
    page.Element("a", "← Previous",
                 {{"rel", "prev"}, {"href", SearchAddress(kPath, PreviousPage(query, total))}});
  }
  page.End();
  page.Begin("span");
  if (HasNextPage(query, total)) {
    page.Element("a", "Next →", {{"rel", "next"}, {"href", SearchAddress(kPath, NextPage(query))}});
  }
  page.End();
  page.End();
}

}  // namespace

void AnswerSearchPage(const Call& call, httplib::Response& response) {
  const SearchQuery query = ReadSearchQuery(call.request);
  const ItemPage results = Search(call.database, query);
  const std::string heading = HeadingOf(query, results);
  MarkupWriter page = BeginPage({heading, query.text, SearchAddress("/search", query)});
  page.Element("h1", heading, {{"dir", "auto"}});
  page.Element("p", RangeOf(query, results), {{"class", "soft"}});
  WriteItemList(page, results.items, "h2");
  WritePaging(page, query, results.total);
  SetPage(response, page);
}

}  // namespace stowra_emulator
