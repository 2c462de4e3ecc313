// SPDX-License-Identifier: MIT
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

// The model with this mid. Throws a RequestError with status 404 if there is no such model.
Item GetModel(Database& database, const std::string& mid);

// The last `count` models that clients have uploaded, the newest first.
std::vector<Item> LatestUploads(Database& database, int count);

struct ItemPage {
  int total = 0;            // Of the whole result.
  std::vector<Item> items;  // Of the page asked for.
  std::string description;  // The collection and author; empty for all.
  std::string updated;      // Of the newest item in the whole service.
};

// The best matches come first. Throws a RequestError with status 404 if there is no such
// collection.
ItemPage Search(Database& database, const SearchQuery& query);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_CATALOG_H_
