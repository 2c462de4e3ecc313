// SPDX-License-Identifier: MIT
#include "host/check/entry_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/item_values.h"
#include "host/check/feed_vocabulary.h"
#include "host/check/rendition_choice.h"

namespace stowra {

using ovrant::stowraapiclient::ContentItem;
using Kind = XmlLookup::Kind;

namespace {

bool Repeats(const std::string& name) {
  return name == "link" || name == "thumbnail" || name == "content";
}

// Such as "link 2", or "entry" at the top.
std::string PlaceOf(const XmlLookup& lookup) {
  if (lookup.path.empty()) return "it";
  const XmlStep& step = lookup.path.back();
  const std::string name = LocalName(step.name);
  const bool is_media = step.name == kMediaContent;
  const std::string shown = is_media ? "media content" : name;
  return Repeats(name) && step.name != kAtomContent ? fmt::format("{} {}", shown, step.number)
                                                    : shown;
}

std::string ThingIn(const XmlLookup& lookup) {
  return lookup.name == kMediaContent ? "media content" : LocalName(lookup.name);
}

// An entry does not need these.
bool IsOptional(const XmlLookup& lookup) {
  return lookup.kind == Kind::kBool || LocalName(lookup.name) == "summary";
}

void ExplainLookup(const XmlLookup& lookup, CheckedPart& part) {
  if (!lookup.found && !IsOptional(lookup)) {
    part.findings.push_back({fmt::format("{} has no {}", PlaceOf(lookup), ThingIn(lookup))});
  } else if (!lookup.found && lookup.kind == Kind::kBool && !lookup.value.empty()) {
    part.findings.push_back({fmt::format("{} is '{}', which is not true, false, 1 or 0; false kept",
                                         ThingIn(lookup), lookup.value)});
  } else if (!lookup.found && lookup.kind == Kind::kText) {
    part.findings.push_back({fmt::format("it has no {}", ThingIn(lookup)), false});
  }
  const bool is_collection_type = lookup.kind == Kind::kAttribute && lookup.name == "type" &&
                                  !lookup.path.empty() && lookup.path.back().name == kAtomContent;
  if (lookup.found && is_collection_type && lookup.value != kAtomType) {
    part.findings.push_back(
        {fmt::format("the type of its content is {}, not {}", lookup.value, kAtomType)});
  }
}

void AddValues(const ContentItem& item, CheckedPart& part) {
  const bool is_model = item.kind_ == ovrant::stowraapiclient::kModel;
  const std::pair<const char*, std::string> values[] = {
      {"kind", is_model ? "model" : "collection"},
      {"id", item.id_.utf8()},
      {"summary", item.summary_.utf8()},
      {"author_name", item.author_name_.utf8()},
      {"author_uri", item.author_uri_.utf8()},
      {"author_id", item.author_id_.utf8()},
      {"html_url", item.html_url_.utf8()},
      {"user_query_url", item.user_query_url_.utf8()},
      {"thumbnail_url", item.thumbnail_url_.utf8()},
      {"download_url", item.download_url_.utf8()},
      {"collection_feed_url", item.collection_feed_url_.utf8()},
      {"dynamic_component", item.dynamic_component_ ? "true" : ""},
      {"classified_component", item.classified_component_ ? "true" : ""},
  };
  for (const auto& [name, value] : values) {
    if (!value.empty()) part.values.emplace_back(name, value);
  }
}

bool HasChosen(const CheckedPart& part) {
  return std::any_of(part.renditions.begin(), part.renditions.end(),
                     [](const CheckedRendition& rendition) { return rendition.is_chosen; });
}

}  // namespace

CheckedPart CheckEntry(WatchedXml& reader, int number, int max_qmf_version) {
  ContentItem item;
  item.max_qmf_version_ = max_qmf_version;
  reader.TakeLookups();
  CheckedPart part;
  part.is_kept = item.Load(&reader);
  const std::vector<XmlLookup> lookups = reader.TakeLookups();
  part.name = fmt::format("entry {}", number);
  part.title = item.title_.utf8();
  for (const XmlLookup& lookup : lookups) ExplainLookup(lookup, part);
  part.renditions = ExplainRenditions(lookups, max_qmf_version);
  if (!part.renditions.empty() && !HasChosen(part)) {
    part.findings.push_back({"no media content can be downloaded"});
  }
  if (item.thumbnail_url_.empty() && part.is_kept) {
    part.findings.push_back({"no thumbnail has rtyp=st in its url", false});
  }
  AddValues(item, part);
  return part;
}

}  // namespace stowra
