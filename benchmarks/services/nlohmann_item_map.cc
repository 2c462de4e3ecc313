// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <utility>

#include "benchmarks/services/peer_item_maps.h"

namespace stowra_bench {
namespace {

using Json = nlohmann::json;

// Moves the text out of the document, which is not needed afterwards.
void Take(Json& object, const char* name, std::string& field) {
  const auto member = object.find(name);
  if (member != object.end() && member->is_string()) {
    field = std::move(member->get_ref<std::string&>());
  }
}

void Read(const Json& object, const char* name, bool& field) {
  const auto member = object.find(name);
  if (member != object.end() && member->is_boolean()) field = member->get<bool>();
}

StandardItem TakeItem(Json& object) {
  StandardItem item;
  Take(object, "id", item.id);
  Take(object, "version_uuid", item.version_uuid);
  std::string version;
  Take(object, "version", version);
  item.version = std::strtof(version.c_str(), nullptr);
  Take(object, "file_url", item.file_url);
  Read(object, "update", item.update);
  Read(object, "remote_kill", item.remote_kill);
  const auto enabled = object.find("enabled");
  item.enabled = enabled != object.end() && enabled->is_number_integer() && *enabled == 1;
  return item;
}

}  // namespace

std::map<std::string, StandardItem> NlohmannItemMap(const std::string& body) {
  std::map<std::string, StandardItem> items;
  Json document = Json::parse(body, nullptr, false);
  if (!document.is_object()) return items;
  const auto extensions = document.find("extensions");
  if (extensions == document.end() || !extensions->is_array()) return items;
  for (Json& element : *extensions) {
    if (!element.is_object()) continue;
    StandardItem item = TakeItem(element);
    std::string id = item.id;
    items.insert_or_assign(std::move(id), std::move(item));
  }
  return items;
}

}  // namespace stowra_bench
