// SPDX-License-Identifier: MIT
// The contents of a Document.

#ifndef COMMON_STOWRAAPI_JSON_DOCUMENT_TREE_H_
#define COMMON_STOWRAAPI_JSON_DOCUMENT_TREE_H_

#include <list>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/rapidjson_types.h"
#include "common_stowraapi/json/value.h"

namespace ovrant::json {

struct Document::Tree {
  ParsedText text{rapidjson::kObjectType};
  std::list<Value> handles;

  Node& root() { return text; }
  Value RootHandle() { return Value(false, &root(), &text.GetAllocator()); }
  Value& HandOut(Node* node) { return handles.emplace_back(false, node, &text.GetAllocator()); }
};

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_DOCUMENT_TREE_H_
