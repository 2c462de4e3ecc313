// SPDX-License-Identifier: MIT
#include "emulator/content/catalog.h"

#include <utility>

#include "emulator/request_error.h"

namespace stowra_emulator {
namespace {

constexpr const char* kItemColumns =
    "SELECT items.mid, kind = 'collection', items.title, items.summary, author, "
    "coalesce(nullif(displayname, ''), author), updated, shape, dynamic_component, "
    "classified_component ";
constexpr const char* kItemTables = "FROM items LEFT JOIN users ON users.uid = items.author ";

std::vector<Rendition> RenditionsOf(Database& database, const std::string& mid) {
  Statement row =
      database.Prepare("SELECT rtyp, type FROM renditions WHERE mid = ? ORDER BY rowid");
  row.Bind(1, mid);
  std::vector<Rendition> renditions;
  while (row.Step()) renditions.push_back({row.Text(0), row.Text(1)});
  return renditions;
}

// The row has the columns of kItemColumns.
Item ReadItem(Database& database, const Statement& row) {
  Item item;
  item.mid = row.Text(0);
  item.is_collection = row.Int(1) == 1;
  item.title = row.Text(2);
  item.summary = row.Text(3);
  item.author = row.Text(4);
  item.author_name = row.Text(5);
  item.updated = row.Text(6);
  item.shape = row.Text(7);
  item.dynamic_component = row.Int(8) == 1;
  item.classified_component = row.Int(9) == 1;
  item.renditions = RenditionsOf(database, item.mid);
  return item;
}

// The part of a statement that picks the items, with the values of its parameters.
struct Selection {
  std::string sql = kItemTables;
  std::vector<std::string> values;

  void Add(const char* condition, const std::string& value) {
    sql += (values.empty() ? "WHERE " : "AND ") + std::string(condition) + ' ';
    values.push_back(value);
  }
};

Selection SelectionOf(const SearchQuery& query, const std::string& expression) {
  Selection selection;
  if (!expression.empty()) {
    selection.sql += "JOIN item_words ON item_words.rowid = items.id ";
    selection.Add("item_words MATCH ?", expression);
  }
  if (!query.author.empty()) selection.Add("items.author = ?", query.author);
  if (!query.collection.empty()) {
    selection.Add("items.mid IN (SELECT model FROM collection_models WHERE collection = ?)",
                  query.collection);
  }
  if (!query.except.empty()) selection.Add("items.mid <> ?", query.except);
  return selection;
}

Statement PrepareSelection(Database& database, const std::string& columns,
                           const Selection& selection, const std::string& order) {
  Statement statement = database.Prepare(columns + selection.sql + order);
  int parameter = 0;
  for (const std::string& value : selection.values) statement.Bind(++parameter, value);
  return statement;
}

std::string DescriptionOf(Database& database, const SearchQuery& query) {
  std::string description;
  if (!query.collection.empty()) {
    const std::optional<Item> collection = FindItem(database, query.collection);
    if (!collection || !collection->is_collection) {
      throw RequestError(404, "no collection '" + query.collection + "'");
    }
    description = collection->title;
  }
  if (!query.author.empty()) {
    Statement name = database.Prepare("SELECT displayname FROM users WHERE uid = ?");
    name.Bind(1, query.author);
    const bool has_name = name.Step() && !name.Text(0).empty();
    description +=
        (description.empty() ? "By " : " by ") + (has_name ? name.Text(0) : query.author);
  }
  return description;
}

std::string LastUpdate(Database& database) {
  Statement row = database.Prepare("SELECT max(updated) FROM items");
  row.Step();
  return row.IsNull(0) ? "1970-01-01T00:00:00Z" : row.Text(0);
}

}  // namespace

std::optional<Item> FindItem(Database& database, const std::string& mid) {
  Selection selection;
  selection.Add("items.mid = ?", mid);
  Statement row = PrepareSelection(database, kItemColumns, selection, "");
  if (!row.Step()) return std::nullopt;
  return ReadItem(database, row);
}

Item GetModel(Database& database, const std::string& mid) {
  std::optional<Item> item = FindItem(database, mid);
  if (!item || item->is_collection) throw RequestError(404, "no model '" + mid + "'");
  return *std::move(item);
}

std::vector<Item> LatestUploads(Database& database, int count) {
  Statement row = database.Prepare(std::string(kItemColumns) + kItemTables +
                                   "JOIN uploads ON uploads.mid = items.mid "
                                   "ORDER BY items.id DESC LIMIT ?");
  row.BindInt(1, count);
  std::vector<Item> items;
  while (row.Step()) items.push_back(ReadItem(database, row));
  return items;
}

ItemPage Search(Database& database, const SearchQuery& query) {
  ItemPage page;
  page.description = DescriptionOf(database, query);
  page.updated = LastUpdate(database);
  const std::string expression = MatchExpression(query.text, Tokenizer(database));
  const Selection selection = SelectionOf(query, expression);

  Statement count = PrepareSelection(database, "SELECT count(*) ", selection, "");
  count.Step();
  page.total = count.Int(0);

  const std::string order = expression.empty() ? "ORDER BY items.id " : "ORDER BY rank, items.id ";
  const std::string limit =
      "LIMIT " + std::to_string(query.count) + " OFFSET " + std::to_string(query.start - 1);
  Statement row = PrepareSelection(database, kItemColumns, selection, order + limit);
  while (row.Step()) page.items.push_back(ReadItem(database, row));
  return page;
}

}  // namespace stowra_emulator
