// What this room does with nodes, safe where RapidJSON itself is not: with any type of node, with
// none, and when memory runs out.

#ifndef COMMON_STOWRAAPI_JSON_NODE_H_
#define COMMON_STOWRAAPI_JSON_NODE_H_

#include <string_view>

#include "common_stowraapi/json/rapidjson_types.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// A null node for a handle to own, and its end: operator new and operator delete. The content of a
// node lives in the pool, so nothing is destroyed.
void* NewNode();
void FreeNode(void* node);

// The node of a handle; a null node, which nobody may write to, for a handle without one.
const Node& ReadNode(const void* node);

// The element, member value or member looked for; null where there is none or `node` is null or of
// another type. A name in a std::string_view is UTF-8.
Node* FindElement(Node* node, unsigned int index);
Node* FindMember(Node* node, const ovrant::utils::ovrant_ustring& name);
Node* FindMember(Node* node, std::string_view name);
Node::Member* FindMemberAt(Node* node, unsigned int index);

// Elements or members; 0 where `node` has neither.
unsigned int CountChildren(const Node& node);

// A string node with a copy of `text` up to its first NUL.
Node MakeText(const ovrant::utils::ovrant_ustring& text, Pool& pool);

// A string node's text up to its first NUL; empty for any other node.
ovrant::utils::ovrant_ustring ReadText(const Node& node);

// Move the content of `item`, or null where there is no item, to the end of `array` or into a new
// last member of `object`; `item` is null then. std::bad_alloc leaves everything as it was.
//
// REQUIRES: `array` or `object` has that type and is not `item`.
void MoveToEnd(Node& array, Node* item, Pool& pool);
void MoveToMember(Node& object, const ovrant::utils::ovrant_ustring& name, Node* item, Pool& pool);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_NODE_H_
