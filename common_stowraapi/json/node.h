// What this room does with nodes, safe where RapidJSON itself is not: with any type of node, with
// none, and when memory runs out.

#ifndef COMMON_STOWRAAPI_JSON_NODE_H_
#define COMMON_STOWRAAPI_JSON_NODE_H_

#include "common_stowraapi/json/rapidjson_types.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// The node of a handle; a null node, which nobody may write to, for a handle without one.
const Node& ReadNode(const void* node);

// The element or member value looked for; null where there is none or `node` is null or of another
// type.
Node* FindElement(Node* node, unsigned int index);
Node* FindMember(Node* node, const ovrant::utils::ovrant_ustring& name);

// The member at `index`; null where there is none or `object` is of another type.
Node::Member* FindMemberAt(Node& object, unsigned int index);

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
