#include "common_stowraapi/services/item_map.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/lookup.h"
#include "common_stowraapi/services/json_fields.h"

namespace ovrant::extensionstoreapi {
namespace {

using ovrant::json::Lookup;
using ovrant::json::ReadBool;
using ovrant::json::ReadString;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

using ItemMap = std::map<ovrant_ustring, ExtensionStoreItem>;

ExtensionStoreItem ReadItem(const Value& element) {
  ExtensionStoreItem item;
  ReadString(element, "id", item.id);
  ovrant_ustring version;
  ReadString(element, "version", version);
  item.version = version.to_float();
  ReadString(element, "file_url", item.file_url);
  ReadBool(element, "update", item.update);
  ReadBool(element, "remote_kill", item.remote_kill);
  ReadString(element, "version_uuid", item.version_uuid);
  const Value enabled = Lookup::Member(element, "enabled");
  item.enabled = enabled.IsInt() && enabled.GetInt() == 1;
  return item;
}

// An item takes the place of one with the same id just before it, so that a list of nothing but
// empty objects costs no more than the list.
void Append(ExtensionStoreItem item, std::vector<ExtensionStoreItem>& items) {
  if (!items.empty() && items.back().id == item.id) {
    items.back() = std::move(item);
  } else {
    items.push_back(std::move(item));
  }
}

std::vector<ExtensionStoreItem> ReadItems(const ovrant_ustring& response) {
  std::vector<ExtensionStoreItem> items;
  if (response.empty()) return items;
  json::Document document;
  if (!document.Load(response)) return items;
  const Value extensions = Lookup::Member(Lookup::Root(document), "extensions");
  if (!extensions.IsArray()) return items;
  for (unsigned int i = 0; i < extensions.Size(); ++i) {
    const Value element = Lookup::Element(extensions, i);
    if (element.IsObject()) Append(ReadItem(element), items);
  }
  return items;
}

// An item's place in the order of the ids: their first units, as a number that is ordered as they
// are, decide mostly.
struct Place {
  explicit Place(ExtensionStoreItem& placed) : item(&placed) {
    const unsigned long length = placed.id.length();
    for (unsigned long i = 0; i < 4; ++i) {
      first_units = first_units << 16 | (i < length ? placed.id.at(i) : 0U);
    }
  }

  std::uint64_t first_units = 0;
  ExtensionStoreItem* item;
};

bool operator<(const Place& a, const Place& b) {
  if (a.first_units != b.first_units) return a.first_units < b.first_units;
  const int ids = a.item->id.compare(b.item->id);
  return ids != 0 ? ids < 0 : a.item < b.item;
}

// Fills the map from its first key to its last, which spares it the search for each one's place,
// all over the memory.
ItemMap MakeMap(std::vector<ExtensionStoreItem> items) {
  std::vector<Place> places(items.begin(), items.end());
  std::sort(places.begin(), places.end());
  ItemMap map;
  for (const Place& place : places) {
    ovrant_ustring id = place.item->id;
    map.insert_or_assign(map.end(), std::move(id), std::move(*place.item));
  }
  return map;
}

}  // namespace

ItemMap ReadItemMap(const ovrant_ustring& response) { return MakeMap(ReadItems(response)); }

}  // namespace ovrant::extensionstoreapi
