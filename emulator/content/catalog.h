// The models and collections in the database.

#ifndef EMULATOR_CONTENT_CATALOG_H_
#define EMULATOR_CONTENT_CATALOG_H_

#include <optional>
#include <string>
#include <vector>

#include "emulator/content/item.h"
#include "emulator/content/search_query.h"
#include "emulator/database.h"

namespace stowra_emulator {

std::optional<Item> FindItem(Database& database, const std::string& mid);

// The model with this mid. Throws RequestError, status 404, when there is none.
Item GetModel(Database& database, const std::string& mid);

struct ItemPage {
  int total = 0;            // Of the whole result.
  std::vector<Item> items;  // Of the page asked for.
  std::string description;  // What is searched in; empty when that is everything.
  std::string updated;      // When the newest item of the whole service was.
};

// The best matches first. Throws RequestError, status 404, when there is no such collection.
ItemPage Search(Database& database, const SearchQuery& query);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_CATALOG_H_
