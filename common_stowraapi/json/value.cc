// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/value.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "common_stowraapi/json/node.h"

namespace ovrant::json {
namespace {

using ovrant::utils::ovrant_ustring;

Pool* PoolOf(void* allocator) { return static_cast<Pool*>(allocator); }

// Empties `handles`. Takes each handle's own list from it first: a long chain of handles must not
// become a chain of destructor calls.
void Empty(std::list<Value>& handles, std::list<Value> Value::*const own) {
  while (!handles.empty()) {
    handles.splice(handles.end(), handles.front().*own);
    handles.pop_front();
  }
}

template <typename Integer>
Integer CutTowardZero(double value) {
  const double limit = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
  const double lowest = std::numeric_limits<Integer>::is_signed ? -limit : 0.0;
  const double whole = std::trunc(value);
  return whole >= lowest && whole < limit ? static_cast<Integer>(whole) : Integer{0};
}

template <typename Integer>
Integer ReadInteger(const Node& node) {
  if (node.IsDouble()) return CutTowardZero<Integer>(node.GetDouble());
  if (node.IsUint64()) return static_cast<Integer>(node.GetUint64());
  if (node.IsInt64()) return static_cast<Integer>(node.GetInt64());
  return 0;
}

}  // namespace

Value::Value() : Value(false, nullptr, nullptr) {}

Value::Value(bool owned, void* node, void* allocator)
    : owned_(owned), node_(node), allocator_(allocator) {}

Value::Value(const Value& other) : Value(other.owned_, other.node_, other.allocator_) {
  other.owned_ = false;
}

Value& Value::operator=(const Value& other) {
  if (this == &other) return *this;
  // `other` may stand in handles_, and may refer to the node that this handle owns.
  const bool owned_here = owned_;
  void* const old_node = node_;
  owned_ = other.owned_;
  node_ = other.node_;
  allocator_ = other.allocator_;
  other.owned_ = false;
  if (owned_here && old_node == node_) {
    owned_ = true;
  } else if (owned_here) {
    FreeNode(old_node);
  }
  Empty(handles_, &Value::handles_);
  return *this;
}

Value::~Value() {
  if (owned_) FreeNode(node_);
  Empty(handles_, &Value::handles_);
}

bool Value::IsNull() const { return ReadNode(node_).IsNull(); }
bool Value::IsFalse() const { return ReadNode(node_).IsFalse(); }
bool Value::IsTrue() const { return ReadNode(node_).IsTrue(); }
bool Value::IsBool() const { return ReadNode(node_).IsBool(); }
bool Value::IsObject() const { return ReadNode(node_).IsObject(); }
bool Value::IsArray() const { return ReadNode(node_).IsArray(); }
bool Value::IsString() const { return ReadNode(node_).IsString(); }
bool Value::IsNumber() const { return ReadNode(node_).IsNumber(); }
bool Value::IsInt() const { return ReadNode(node_).IsInt(); }
bool Value::IsUint() const { return ReadNode(node_).IsUint(); }
bool Value::IsInt64() const { return ReadNode(node_).IsInt64(); }
bool Value::IsUint64() const { return ReadNode(node_).IsUint64(); }
bool Value::IsDouble() const { return ReadNode(node_).IsDouble(); }

int Value::GetInt() const { return ReadInteger<int>(ReadNode(node_)); }
unsigned int Value::GetUint() const { return ReadInteger<unsigned int>(ReadNode(node_)); }
long long Value::GetInt64() const { return ReadInteger<long long>(ReadNode(node_)); }
unsigned long long Value::GetUint64() const {
  return ReadInteger<unsigned long long>(ReadNode(node_));
}

double Value::GetDouble() const {
  const Node& node = ReadNode(node_);
  return node.IsNumber() ? node.GetDouble() : 0.0;
}

bool Value::GetBool() const { return IsTrue(); }

ovrant_ustring Value::GetString() const { return ReadText(ReadNode(node_)); }

unsigned int Value::Size() const { return CountChildren(ReadNode(node_)); }

Value& Value::operator[](unsigned int index) { return static_cast<const Value&>(*this)[index]; }

Value& Value::operator[](unsigned int index) const {
  return handles_.emplace_back(false, FindElement(NodeOf(node_), index), allocator_);
}

bool Value::HasMember(const ovrant_ustring& name) const {
  return FindMember(NodeOf(node_), name) != nullptr;
}

Value& Value::operator[](const ovrant_ustring& name) {
  return static_cast<const Value&>(*this)[name];
}

Value& Value::operator[](const ovrant_ustring& name) const {
  return handles_.emplace_back(false, FindMember(NodeOf(node_), name), allocator_);
}

void Value::SetNull() {
  if (node_ != nullptr) NodeOf(node_)->SetNull();
}
void Value::SetObject() {
  if (node_ != nullptr) NodeOf(node_)->SetObject();
}
void Value::SetArray() {
  if (node_ != nullptr) NodeOf(node_)->SetArray();
}
void Value::SetBool(bool value) {
  if (node_ != nullptr) NodeOf(node_)->SetBool(value);
}
void Value::SetInt(int value) {
  if (node_ != nullptr) NodeOf(node_)->SetInt(value);
}
void Value::SetUint(unsigned int value) {
  if (node_ != nullptr) NodeOf(node_)->SetUint(value);
}
void Value::SetInt64(long long value) {
  if (node_ != nullptr) NodeOf(node_)->SetInt64(static_cast<std::int64_t>(value));
}
void Value::SetUint64(unsigned long long value) {
  if (node_ != nullptr) NodeOf(node_)->SetUint64(static_cast<std::uint64_t>(value));
}
void Value::SetDouble(double value) {
  if (node_ != nullptr) NodeOf(node_)->SetDouble(value);
}

void Value::SetString(const ovrant_ustring& text) {
  if (node_ == nullptr || allocator_ == nullptr) return;
  *NodeOf(node_) = MakeText(text, *PoolOf(allocator_));
}

void Value::PushBack(const Value& item) {
  if (!IsArray() || allocator_ == nullptr || item.node_ == node_) return;
  MoveToEnd(*NodeOf(node_), NodeOf(item.node_), *PoolOf(allocator_));
}

void Value::Clear() {
  if (IsArray()) NodeOf(node_)->Clear();
}

void Value::AddMember(const ovrant_ustring& name, const Value& item) {
  if (!IsObject() || allocator_ == nullptr || item.node_ == node_) return;
  MoveToMember(*NodeOf(node_), name, NodeOf(item.node_), *PoolOf(allocator_));
}

}  // namespace ovrant::json
