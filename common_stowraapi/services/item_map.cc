// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/item_map.h"

#include <utility>

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

}  // namespace

ItemMap ReadItemMap(const ovrant_ustring& response) {
  ItemMap items;
  if (response.empty()) return items;
  json::Document document;
  if (!document.Load(response)) return items;
  const Value extensions = Lookup::Member(Lookup::Root(document), "extensions");
  if (!extensions.IsArray()) return items;
  for (unsigned int i = 0; i < extensions.Size(); ++i) {
    const Value element = Lookup::Element(extensions, i);
    if (!element.IsObject()) continue;
    ExtensionStoreItem item = ReadItem(element);
    items[item.id] = std::move(item);
  }
  return items;
}

}  // namespace ovrant::extensionstoreapi
