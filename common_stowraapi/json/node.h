// SPDX-License-Identifier: MIT
// Operations on nodes that are safe where RapidJSON's own are not: on any type of node, on a null
// pointer, and when memory runs out.

#ifndef COMMON_STOWRAAPI_JSON_NODE_H_
#define COMMON_STOWRAAPI_JSON_NODE_H_

#include <string_view>

#include "common_stowraapi/json/rapidjson_types.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Make and free a null node for a handle to own, with operator new and operator delete. The content
// of a node lives in the pool, so nothing is destroyed.
void* NewNode();
void FreeNode(void* node);

// The node of a handle. For a null pointer, a shared null node that must not be written to.
const Node& ReadNode(const void* node);

// The node of a handle, which may be null.
inline Node* NodeOf(void* node) { return static_cast<Node*>(node); }

// The element, the member's value or the member. Null if it does not exist, or if `node` is null or
// of another type. A std::string_view holds UTF-8.
Node* FindElement(Node* node, unsigned int index);
Node* FindMember(Node* node, const ovrant::utils::ovrant_ustring& name);
Node* FindMember(Node* node, std::string_view name);
Node::Member* FindMemberAt(Node* node, unsigned int index);

// The number of elements or members; 0 for any other type.
unsigned int CountChildren(const Node& node);

// A string node with a copy of `text` up to its first NUL, made in `pool`.
Node MakeText(const ovrant::utils::ovrant_ustring& text, Pool& pool);

// The text of a string node up to its first NUL; empty for any other type.
ovrant::utils::ovrant_ustring ReadText(const Node& node);

// Move the content of `item` to the end of `array`, or into a new last member of `object`, and make
// `item` null. A null pointer adds a null node. std::bad_alloc leaves everything as it was.
//
// REQUIRES: `array` or `object` has that type and is not `item`.
void MoveToEnd(Node& array, Node* item, Pool& pool);
void MoveToMember(Node& object, const ovrant::utils::ovrant_ustring& name, Node* item, Pool& pool);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_NODE_H_
