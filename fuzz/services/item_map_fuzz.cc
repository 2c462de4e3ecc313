// SPDX-License-Identifier: MIT
// The extension store's answer as records, beside a model. Input: the answer.

#include "common_stowraapi/services/item_map.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/check.h"

namespace {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::JsonNode;
using stowra_fuzz::JsonText;

struct Item {
  std::string id;
  std::string version_uuid;
  std::string version;
  std::string file_url;
  bool update = false;
  bool remote_kill = false;
  bool enabled = false;
};

std::size_t SkipDigits(const std::string& text, std::size_t at) {
  while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
  return at;
}

// Digits with an optional sign, point and exponent, between white space.
float ReadFloat(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  if (begin == std::string::npos) return 0;
  const std::string number = text.substr(begin, text.find_last_not_of(" \t\n\v\f\r") + 1 - begin);
  const std::size_t first = number[0] == '-' || number[0] == '+' ? 1 : 0;
  std::size_t at = SkipDigits(number, first);
  std::size_t digits = at - first;
  if (number[at] == '.') {
    const std::size_t end = SkipDigits(number, at + 1);
    digits += end - (at + 1);
    at = end;
  }
  if (digits == 0) return 0;
  if (number[at] == 'e' || number[at] == 'E') {
    ++at;
    if (number[at] == '-' || number[at] == '+') ++at;
    const std::size_t end = SkipDigits(number, at);
    if (end == at) return 0;
    at = end;
  }
  if (at != number.size()) return 0;
  const float value = std::strtof(number.c_str(), nullptr);
  return std::isfinite(value) ? value : 0;
}

Item ReadItem(const JsonNode& element) {
  Item item;
  stowra_fuzz::TakeText(element, "id", item.id);
  stowra_fuzz::TakeText(element, "version", item.version);
  stowra_fuzz::TakeText(element, "file_url", item.file_url);
  stowra_fuzz::TakeBool(element, "update", item.update);
  stowra_fuzz::TakeBool(element, "remote_kill", item.remote_kill);
  stowra_fuzz::TakeText(element, "version_uuid", item.version_uuid);
  const JsonNode* const enabled = element.Find("enabled");
  item.enabled =
      enabled != nullptr && enabled->kind == JsonNode::Kind::kInteger && enabled->integer == 1;
  return item;
}

// The last element of an id counts.
std::map<std::string, Item> ReadItems(const JsonText& answer) {
  std::map<std::string, Item> items;
  if (answer.verdict == JsonText::Verdict::kRefused) return items;
  const JsonNode* const extensions = answer.root.Find("extensions");
  if (extensions == nullptr || extensions->kind != JsonNode::Kind::kArray) return items;
  for (const JsonNode& element : extensions->children) {
    if (element.kind != JsonNode::Kind::kObject) continue;
    const Item item = ReadItem(element);
    items[item.id] = item;
  }
  return items;
}

void CheckItem(const ExtensionStoreItem& found, const Item& expected) {
  FUZZ_CHECK(found.id.utf8() == expected.id);
  FUZZ_CHECK(found.version_uuid.utf8() == expected.version_uuid);
  FUZZ_CHECK(found.version == ReadFloat(expected.version));
  FUZZ_CHECK(found.file_url.utf8() == expected.file_url);
  FUZZ_CHECK(found.update == expected.update);
  FUZZ_CHECK(found.remote_kill == expected.remote_kill);
  FUZZ_CHECK(found.enabled == expected.enabled);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ovrant_ustring response(reinterpret_cast<const char*>(data),
                                static_cast<unsigned long>(size));
  const JsonText answer = stowra_fuzz::ReadJson(response.utf8());
  const auto found = ovrant::extensionstoreapi::ReadItemMap(response);
  if (answer.verdict == JsonText::Verdict::kEither) return 0;

  const std::map<std::string, Item> expected = ReadItems(answer);
  FUZZ_CHECK(found.size() == expected.size());
  const ovrant_ustring* previous = nullptr;
  for (const auto& [id, item] : found) {
    FUZZ_CHECK(previous == nullptr || previous->compare(id) < 0);
    previous = &id;
    const auto match = expected.find(id.utf8());
    FUZZ_CHECK(match != expected.end());
    CheckItem(item, match->second);
  }
  return 0;
}
