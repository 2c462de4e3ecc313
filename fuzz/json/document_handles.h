// SPDX-License-Identifier: MIT
// Long-lived handles into a document, each with its node in a model.

#ifndef FUZZ_JSON_DOCUMENT_HANDLES_H_
#define FUZZ_JSON_DOCUMENT_HANDLES_H_

#include <array>
#include <cstddef>
#include <memory>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/input.h"

namespace stowra_fuzz {

// A handle found on a path from a long-lived one, and its node, or null for an empty handle. Valid
// until a tree changes.
struct Place {
  ovrant::json::Value* value = nullptr;
  JsonNode* node = nullptr;
  bool is_handed_out = false;  // by another handle or the document

  // Whether `other` lies below.
  bool IsAbove(const Place& other) const;
};

// The document's root, and a few handles beside it: empty ones, owners of a node that MakeValue
// made, and others to the same node. The input chooses one for each operation.
class DocumentHandles {
 public:
  DocumentHandles(Input& input, ovrant::json::Document& document, JsonNode& root);

  JsonNode& root() { return *slots_[0].node; }

  // The place at the end of a short path through elements and members, there or not.
  Place Find();

  // Replaces a handle by one that owns a new node, or by another handle.
  void Make();
  void Assign();

  // Makes a copy, which takes the ownership, and moves that back.
  void CopyAndGiveBack();

  // Rebinds a handle that the document returned. The tree stays as it was.
  void Rebind();

  // Compares every tree and the document's text.
  void Check();

 private:
  static constexpr std::size_t kSlots = 4;

  // Two slots may share a node, which one of them owns.
  struct Slot {
    ovrant::json::Value value;
    std::shared_ptr<JsonNode> node;  // null: an empty handle
    bool owns = false;
  };

  void GoDown(Place& place);

  // Called before the slot's node is freed. Empties the other handles to it.
  void Release(std::size_t slot);

  Input& input_;
  ovrant::json::Document& document_;
  std::array<Slot, kSlots> slots_;
};

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_DOCUMENT_HANDLES_H_
