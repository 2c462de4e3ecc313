// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/lookup.h"

#include "common_stowraapi/json/document_tree.h"
#include "common_stowraapi/json/node.h"

namespace ovrant::json {

Value Lookup::Root(const Document& document) { return document.tree_->RootHandle(); }

Value Lookup::Member(const Value& object, std::string_view name) {
  return Value(false, FindMember(NodeOf(object.node_), name), object.allocator_);
}

Value Lookup::MemberAt(const Value& object, unsigned int index) {
  Node::Member* const member = FindMemberAt(NodeOf(object.node_), index);
  return Value(false, member == nullptr ? nullptr : &member->value, object.allocator_);
}

Value Lookup::Element(const Value& array, unsigned int index) {
  return Value(false, FindElement(NodeOf(array.node_), index), array.allocator_);
}

}  // namespace ovrant::json
