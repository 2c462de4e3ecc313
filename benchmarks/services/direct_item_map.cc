// SPDX-License-Identifier: MIT
#include "benchmarks/services/direct_item_map.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

// Renames the namespace, because other code in this program uses RapidJSON without the SIMD switch.
#define RAPIDJSON_NAMESPACE rapidjson_in_steps
#define RAPIDJSON_NAMESPACE_BEGIN namespace rapidjson_in_steps {
#define RAPIDJSON_NAMESPACE_END }
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif
#include <rapidjson/reader.h>

namespace stowra_bench {
namespace {

namespace rapidjson = rapidjson_in_steps;

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::utils::ovrant_ustring;

using ItemMap = std::map<ovrant_ustring, ExtensionStoreItem>;

constexpr std::size_t kPadding = 16;  // bytes that a SIMD step may read past the end

enum class Field { kNone, kId, kVersion, kFileUrl, kUpdate, kRemoteKill, kVersionUuid, kEnabled };

Field FieldOf(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, Field>, 7> kFields = {{
      {"id", Field::kId},
      {"version_uuid", Field::kVersionUuid},
      {"version", Field::kVersion},
      {"file_url", Field::kFileUrl},
      {"update", Field::kUpdate},
      {"remote_kill", Field::kRemoteKill},
      {"enabled", Field::kEnabled},
  }};
  for (const auto& [known, field] : kFields) {
    if (name == known) return field;
  }
  return Field::kNone;
}

// Receives the parser's events. The root is at depth 1, the list at 2, its elements at 3.
class ItemReader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, ItemReader> {
 public:
  std::vector<ExtensionStoreItem>& items() { return items_; }

  bool Default() { return Took(); }

  bool Bool(bool value) {
    if (field_ == Field::kUpdate) item_.update = value;
    if (field_ == Field::kRemoteKill) item_.remote_kill = value;
    return Took();
  }

  bool Int(int value) { return Uint(static_cast<unsigned>(value)); }
  bool Uint(unsigned value) {
    if (field_ == Field::kEnabled) item_.enabled = value == 1;
    return Took();
  }

  bool String(const char* text, rapidjson::SizeType /*size*/, bool /*copy*/) {
    if (field_ == Field::kId) item_.id = ovrant_ustring(text);
    if (field_ == Field::kVersion) item_.version = ovrant_ustring(text).to_float();
    if (field_ == Field::kFileUrl) item_.file_url = ovrant_ustring(text);
    if (field_ == Field::kVersionUuid) item_.version_uuid = ovrant_ustring(text);
    return Took();
  }

  // The first of several equal names counts.
  bool Key(const char* text, rapidjson::SizeType size, bool /*copy*/) {
    const std::string_view name(text, size);
    if (depth_ == 3 && in_list_) {
      field_ = FieldOf(name);
      const unsigned bit = 1U << static_cast<unsigned>(field_);
      if ((seen_ & bit) != 0) field_ = Field::kNone;
      seen_ |= bit;
    } else if (depth_ == 1 && !list_seen_ && name == "extensions") {
      list_seen_ = list_is_next_ = true;
    }
    return true;
  }

  bool StartObject() {
    Took();
    if (++depth_ == 1) root_is_object_ = true;
    if (depth_ == 3 && in_list_) {
      item_ = ExtensionStoreItem();
      seen_ = 0;
    }
    return true;
  }

  bool EndObject(rapidjson::SizeType /*count*/) {
    if (depth_-- == 3 && in_list_) items_.push_back(std::move(item_));
    return true;
  }

  bool StartArray() {
    const bool is_list = list_is_next_;
    Took();
    if (++depth_ == 2 && root_is_object_) in_list_ = is_list;
    return true;
  }

  bool EndArray(rapidjson::SizeType /*count*/) {
    if (depth_-- == 2) in_list_ = false;
    return true;
  }

 private:
  bool Took() {
    field_ = Field::kNone;
    list_is_next_ = false;
    return true;
  }

  std::vector<ExtensionStoreItem> items_;
  ExtensionStoreItem item_;
  Field field_ = Field::kNone;
  unsigned seen_ = 0;
  int depth_ = 0;
  bool root_is_object_ = false;
  bool list_seen_ = false;
  bool list_is_next_ = false;
  bool in_list_ = false;
};

// The first four units of an id, and the item's index.
using Place = std::pair<std::uint64_t, std::size_t>;

std::vector<Place> PlacesById(const std::vector<ExtensionStoreItem>& items) {
  std::vector<Place> places;
  places.reserve(items.size());
  for (const ExtensionStoreItem& item : items) {
    std::uint64_t units = 0;
    for (unsigned long i = 0; i < 4; ++i) {
      units = units << 16 | (i < item.id.length() ? item.id.at(i) : 0U);
    }
    places.emplace_back(units, places.size());
  }
  std::sort(places.begin(), places.end(), [&](const Place& a, const Place& b) {
    if (a.first != b.first) return a.first < b.first;
    const int ids = items[a.second].id.compare(items[b.second].id);
    return ids != 0 ? ids < 0 : a.second < b.second;
  });
  return places;
}

}  // namespace

// The fastest of the tried ways. They were a document or events, in place or not, with and without
// SIMD. The map was filled in the items' order or in the ids' order.
ItemMap DirectItemMap(const std::string& body) {
  std::string text;
  text.reserve(body.size() + kPadding);
  text.append(body).append(kPadding, '\0');
  rapidjson::InsituStringStream input(text.data());
  rapidjson::Reader reader;
  ItemReader handler;
  if (!reader.Parse<rapidjson::kParseInsituFlag>(input, handler)) return ItemMap();

  ItemMap map;
  std::vector<ExtensionStoreItem>& items = handler.items();
  for (const Place& place : PlacesById(items)) {
    ExtensionStoreItem& item = items[place.second];
    ovrant_ustring id = item.id;
    map.insert_or_assign(map.end(), std::move(id), std::move(item));
  }
  return map;
}

}  // namespace stowra_bench
