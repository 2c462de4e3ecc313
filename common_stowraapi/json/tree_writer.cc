// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/tree_writer.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "common_stowraapi/json/string_scan.h"

// RapidJSON's own vector code works for its default buffer type only, and leaves the control
// characters 0x1A to 0x1F without an escape.
template <>
bool ovrant::json::OutputWriter::ScanWriteUnescapedString(ovrant::json::Input& text,
                                                          std::size_t length) {
  const char* const end = text.head_ + length;
  const char* const stop = ovrant::json::FindEscape(text.src_, end);
  const auto plain = static_cast<std::size_t>(stop - text.src_);
  std::memcpy(os_->PushUnsafe(plain), text.src_, plain);
  text.src_ = stop;
  return stop != end;
}

namespace ovrant::json {
namespace {

class TreeWriter {
 public:
  explicit TreeWriter(Output& text) : text_(text), writer_(text) {}

  void Write(const Node& root) {
    const Node* node = &root;
    while (node != nullptr && WriteNode(*node)) node = Next();
  }

 private:
  // An array or object that has been started, and the number of its children that have.
  struct Level {
    const Node* node;
    SizeType begun;
  };

  // Writes a leaf, or starts an array or object.
  bool WriteNode(const Node& node);
  bool WriteNumber(const Node& node);
  void WriteText(const Node& node);

  // Ends complete arrays and objects. Returns the next node to write, or null at the end.
  const Node* Next();

  Output& text_;
  OutputWriter writer_;
  std::vector<Level> levels_;
};

bool TreeWriter::WriteNode(const Node& node) {
  switch (node.GetType()) {
    case rapidjson::kNullType:
      return writer_.Null();
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
      return writer_.Bool(node.IsTrue());
    case rapidjson::kObjectType:
      levels_.push_back({&node, 0});
      return writer_.StartObject();
    case rapidjson::kArrayType:
      levels_.push_back({&node, 0});
      return writer_.StartArray();
    case rapidjson::kStringType:
      WriteText(node);
      return true;
    case rapidjson::kNumberType:
      return WriteNumber(node);
  }
  return false;
}

bool TreeWriter::WriteNumber(const Node& node) {
  if (node.IsDouble()) return writer_.Double(node.GetDouble());
  if (node.IsInt()) return writer_.Int(node.GetInt());
  if (node.IsUint()) return writer_.Uint(node.GetUint());
  if (node.IsInt64()) return writer_.Int64(node.GetInt64());
  return writer_.Uint64(node.GetUint64());
}

// The writer reserves six bytes a character and two quotes, and then writes without checking. It
// computes that size in 32 bits, so a longer text needs its room reserved here.
void TreeWriter::WriteText(const Node& node) {
  constexpr SizeType kMaxCounted = (std::numeric_limits<SizeType>::max() - 2) / 6;
  const SizeType length = node.GetStringLength();
  if (length > kMaxCounted) text_.Reserve(std::size_t{length} * 6 + 3);
  writer_.String(node.GetString(), length);
}

const Node* TreeWriter::Next() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    const Node& node = *level.node;
    if (node.IsArray()) {
      if (level.begun < node.Size()) return &node[level.begun++];
      writer_.EndArray();
    } else {
      if (level.begun < node.MemberCount()) {
        const Node::Member& member = node.MemberBegin()[level.begun++];
        WriteText(member.name);
        return &member.value;
      }
      writer_.EndObject();
    }
    levels_.pop_back();
  }
  return nullptr;
}

}  // namespace

void WriteTree(const Node& root, Output& text) { TreeWriter(text).Write(root); }

}  // namespace ovrant::json
