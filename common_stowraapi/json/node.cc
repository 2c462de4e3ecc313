// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/node.h"

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace ovrant::json {
namespace {

using ovrant::utils::ovrant_ustring;

// The largest count at which an array or object may still grow by half within 32 bits.
constexpr SizeType kMaxGrowing = std::numeric_limits<SizeType>::max() / 3 * 2;

void CheckGrowth(SizeType count) {
  if (count > kMaxGrowing) throw std::bad_alloc();
}

// Holds the content of an item on its way into an array or object. The item is null meanwhile, and
// gets its content back if the move fails. That also works for an item that the array moves as it
// grows.
class Content {
 public:
  explicit Content(Node* item) : item_(item) {
    if (item_ != nullptr) content_ = *item_;
  }
  ~Content() {
    if (!content_.IsNull()) *item_ = content_;
  }

  Content(const Content&) = delete;
  Content& operator=(const Content&) = delete;

  Node& node() { return content_; }

 private:
  Node* const item_;
  Node content_;
};

// Node::AddMember raises the object's capacity before it allocates: undo that if it throws.
void AddMember(Node& object, Node& name, Node& value, Pool& pool) {
  unsigned char before[sizeof(Node)];
  std::memcpy(before, static_cast<const void*>(&object), sizeof(Node));
  try {
    object.AddMember(name, value, pool);
  } catch (const std::bad_alloc&) {
    std::memcpy(static_cast<void*>(&object), before, sizeof(Node));
    throw;
  }
}

}  // namespace

void* NewNode() { return new (::operator new(sizeof(Node))) Node; }

void FreeNode(void* node) { ::operator delete(node); }

const Node& ReadNode(const void* node) {
  if (node != nullptr) return *static_cast<const Node*>(node);
  static const Node null_node;
  return null_node;
}

Node* FindElement(Node* node, unsigned int index) {
  if (node == nullptr || !node->IsArray() || index >= node->Size()) return nullptr;
  return &(*node)[index];
}

Node* FindMember(Node* node, std::string_view name) {
  if (node == nullptr || !node->IsObject() || name.size() > kMaxTextLength) return nullptr;
  const Node key(rapidjson::StringRef(name.data(), name.size()));
  const auto member = node->FindMember(key);
  return member == node->MemberEnd() ? nullptr : &member->value;
}

Node* FindMember(Node* node, const ovrant_ustring& name) {
  const std::string utf8 = name.utf8();
  return FindMember(node, utf8);
}

Node::Member* FindMemberAt(Node* node, unsigned int index) {
  if (node == nullptr || !node->IsObject() || index >= node->MemberCount()) return nullptr;
  return &node->MemberBegin()[index];
}

unsigned int CountChildren(const Node& node) {
  if (node.IsArray()) return node.Size();
  return node.IsObject() ? node.MemberCount() : 0;
}

Node MakeText(const ovrant_ustring& text, Pool& pool) {
  const std::string utf8 = text.utf8();
  const std::size_t length = std::strlen(utf8.c_str());
  if (length > kMaxTextLength) throw std::bad_alloc();
  return Node(utf8.c_str(), static_cast<SizeType>(length), pool);
}

ovrant_ustring ReadText(const Node& node) {
  return node.IsString() ? ovrant_ustring(node.GetString()) : ovrant_ustring();
}

void MoveToEnd(Node& array, Node* item, Pool& pool) {
  CheckGrowth(array.Size());
  Content content(item);
  array.PushBack(content.node(), pool);
}

void MoveToMember(Node& object, const ovrant_ustring& name, Node* item, Pool& pool) {
  CheckGrowth(object.MemberCount());
  Node key = MakeText(name, pool);
  Content content(item);
  AddMember(object, key, content.node(), pool);
}

}  // namespace ovrant::json
