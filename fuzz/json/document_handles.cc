// SPDX-License-Identifier: MIT
#include "fuzz/json/document_handles.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "common_stowraapi/json/lookup.h"
#include "fuzz/json/document_check.h"
#include "fuzz/support/check.h"

namespace stowra_fuzz {

using ovrant::json::Document;
using ovrant::json::Lookup;
using ovrant::json::Value;

bool Place::IsAbove(const Place& other) const {
  if (node == nullptr || other.node == nullptr || node == other.node) return false;
  std::vector<const JsonNode*> open{node};
  while (!open.empty()) {
    const JsonNode* const at = open.back();
    open.pop_back();
    if (at == other.node) return true;
    for (const JsonNode& child : at->children) open.push_back(&child);
  }
  return false;
}

DocumentHandles::DocumentHandles(Input& input, Document& document, JsonNode& root)
    : input_(input), document_(document) {
  slots_[0].value = Lookup::Root(document);
  slots_[0].node = std::make_shared<JsonNode>(std::move(root));
}

Place DocumentHandles::Find() {
  constexpr std::size_t kMaxPath = 4;
  const std::uint8_t where = input_.Byte();
  Slot& slot = slots_[where % kSlots];
  Place place{&slot.value, slot.node.get()};
  for (std::size_t left = where / kSlots % kMaxPath; left > 0; --left) GoDown(place);
  return place;
}

// To an element, or to the first member of some member's name; or, at the end of them, to nothing.
void DocumentHandles::GoDown(Place& place) {
  const std::size_t children = place.node == nullptr ? 0 : place.node->children.size();
  const std::size_t index = input_.Below(std::min<std::size_t>(children + 1, 256));
  if (place.node == nullptr || place.node->kind != JsonNode::Kind::kObject) {
    place.value = &(*place.value)[static_cast<unsigned int>(index)];
    place.node = index < children ? &place.node->children[index] : nullptr;
  } else {
    const auto name = FromUtf8(index < children ? place.node->names[index] : "absent");
    const bool is_root = place.value == &slots_[0].value;
    place.value = is_root ? &document_[name] : &(*place.value)[name];
    place.node = place.node->Find(name.utf8());
  }
  place.is_handed_out = true;
}

void DocumentHandles::Release(std::size_t slot) {
  if (!slots_[slot].owns) return;
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (i == slot || slots_[i].node != slots_[slot].node) continue;
    slots_[i].value = Value();
    slots_[i].node.reset();
  }
}

void DocumentHandles::Make() {
  const std::size_t to = 1 + input_.Below(kSlots - 1);
  Release(to);
  slots_[to].value = document_.MakeValue();
  slots_[to].node = std::make_shared<JsonNode>();
  slots_[to].owns = true;
}

void DocumentHandles::Assign() {
  const std::size_t to = 1 + input_.Below(kSlots - 1);
  const std::size_t from = input_.Below(kSlots);
  const bool same_node = slots_[to].node == slots_[from].node;
  if (!same_node) Release(to);
  slots_[to].value = slots_[from].value;
  if (to == from) return;
  slots_[to].owns = slots_[from].owns || (same_node && slots_[to].owns);
  slots_[to].node = slots_[from].node;
  slots_[from].owns = false;
}

void DocumentHandles::CopyAndGiveBack() {
  Slot& slot = slots_[1 + input_.Below(kSlots - 1)];
  const Value copy(slot.value);
  FUZZ_CHECK(copy.Size() == slot.value.Size());
  slot.value = copy;
}

void DocumentHandles::Rebind() {
  const Place place = Find();
  if (!place.is_handed_out) return;
  *place.value = document_.MakeValue();
  FUZZ_CHECK(place.value->IsNull());
  place.value->SetInt(7);
  FUZZ_CHECK(place.value->GetInt() == 7);
}

void DocumentHandles::Check() {
  for (const Slot& slot : slots_) {
    if (slot.node != nullptr) CheckTree(slot.value, *slot.node);
  }
  CheckDocument(document_, root());
}

}  // namespace stowra_fuzz
