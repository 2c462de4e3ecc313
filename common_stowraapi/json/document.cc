// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/document.h"

#include <memory>

#include "common_stowraapi/json/document_tree.h"
#include "common_stowraapi/json/node.h"
#include "common_stowraapi/json/tree_reader.h"
#include "common_stowraapi/json/tree_writer.h"

namespace ovrant::json {

using ovrant::utils::ovrant_ustring;

Document::Document() : tree_(std::make_unique<Tree>()) {}

Document::~Document() = default;

bool Document::Load(const ovrant_ustring& text) {
  tree_->root().SetNull();
  return ReadTree(text.utf8(), kMaxDepth, tree_->text);
}

void Document::ToString(ovrant_ustring& out) {
  Output text;
  WriteTree(tree_->root(), text);
  out.assign_utf8(text.GetString());
}

Value Document::MakeValue() { return Value(true, NewNode(), &tree_->text.GetAllocator()); }

bool Document::HasMember(const ovrant_ustring& name) const {
  return FindMember(&tree_->root(), name) != nullptr;
}

void Document::AddMember(const ovrant_ustring& name, const Value& item) {
  tree_->RootHandle().AddMember(name, item);
}

Value& Document::operator[](const ovrant_ustring& name) {
  return static_cast<const Document&>(*this)[name];
}

Value& Document::operator[](const ovrant_ustring& name) const {
  return tree_->HandOut(FindMember(&tree_->root(), name));
}

unsigned int Document::MemberCount() const {
  return tree_->root().IsObject() ? CountChildren(tree_->root()) : 0;
}

Value& Document::MemberAt(unsigned int index) {
  return static_cast<const Document&>(*this).MemberAt(index);
}

Value& Document::MemberAt(unsigned int index) const {
  Node::Member* const member = FindMemberAt(&tree_->root(), index);
  return tree_->HandOut(member == nullptr ? nullptr : &member->value);
}

ovrant_ustring Document::MemberNameAt(unsigned int index) const {
  const Node::Member* const member = FindMemberAt(&tree_->root(), index);
  return member == nullptr ? ovrant_ustring() : ReadText(member->name);
}

}  // namespace ovrant::json
