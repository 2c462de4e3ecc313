// SPDX-License-Identifier: MIT
#include "fuzz/json/document_builder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "common_stowraapi/json/lookup.h"
#include "fuzz/json/document_check.h"
#include "fuzz/json/document_handles.h"
#include "fuzz/support/check.h"

namespace stowra_fuzz {
namespace {

using ovrant::json::Document;
using ovrant::json::Lookup;
using Kind = JsonNode::Kind;

constexpr int kMaxOperations = 64;

// In the input: a byte, modulo their number.
enum class Operation : std::uint8_t {
  kSetNull,
  kSetObject,
  kSetArray,
  kSetBool,
  kSetInt,
  kSetUint,
  kSetInt64,
  kSetUint64,
  kSetDouble,
  kSetString,
  kPushBack,
  kAddMember,
  kClear,
  kMake,
  kAssign,
  kCopy,
  kRebind,
  kWrite,
  kLoad,
  kCount,
};

class Builder {
 public:
  Builder(Input& input, Document& document, JsonNode& root)
      : input_(input), document_(document), handles_(input, document, root) {}

  void Run() {
    for (int i = 0; i < kMaxOperations && !input_.empty(); ++i) {
      const std::size_t operation = input_.Below(static_cast<std::size_t>(Operation::kCount));
      if (!Do(static_cast<Operation>(operation))) return;
    }
    handles_.Check();
  }

 private:
  // False where the model does not know how it ends.
  bool Do(Operation operation);
  void Set(Operation operation);
  void SetNumber(Operation operation, const Place& place, JsonNode& node);
  void PushBack();
  void AddMember();
  void Clear();
  bool Load();

  std::string Text() { return FromUtf8(input_.Bytes(input_.Below(24))).utf8(); }

  // A number of any magnitude.
  std::uint64_t Number();

  // What `item` holds, which is null then. False when it goes nowhere any more: the place that it
  // is moved to lies in it.
  static bool Take(const Place& item, const Place& target, JsonNode& taken);

  Input& input_;
  Document& document_;
  DocumentHandles handles_;
};

bool Builder::Do(Operation operation) {
  switch (operation) {
    case Operation::kPushBack:
      PushBack();
      return true;
    case Operation::kAddMember:
      AddMember();
      return true;
    case Operation::kClear:
      Clear();
      return true;
    case Operation::kMake:
      handles_.Make();
      return true;
    case Operation::kAssign:
      handles_.Assign();
      return true;
    case Operation::kCopy:
      handles_.CopyAndGiveBack();
      return true;
    case Operation::kRebind:
      handles_.Rebind();
      return true;
    case Operation::kWrite:
      CheckDocument(document_, handles_.root());
      return true;
    case Operation::kLoad:
      return Load();
    default:
      Set(operation);
      return true;
  }
}

// Where there is no node, nothing must come of it.
void Builder::Set(Operation operation) {
  const Place place = handles_.Find();
  JsonNode unused;
  JsonNode& node = place.node == nullptr ? unused : *place.node;
  node = JsonNode();
  switch (operation) {
    case Operation::kSetNull:
      return place.value->SetNull();
    case Operation::kSetObject:
      node.kind = Kind::kObject;
      return place.value->SetObject();
    case Operation::kSetArray:
      node.kind = Kind::kArray;
      return place.value->SetArray();
    case Operation::kSetBool: {
      const bool value = input_.Below(2) == 1;
      node.kind = value ? Kind::kTrue : Kind::kFalse;
      return place.value->SetBool(value);
    }
    case Operation::kSetString: {
      const std::string text = Text();
      node.kind = Kind::kString;
      node.text = text.substr(0, text.find('\0'));
      return place.value->SetString(FromUtf8(text));
    }
    default:
      return SetNumber(operation, place, node);
  }
}

std::uint64_t Builder::Number() {
  std::uint64_t bits = 0;
  for (int i = 0; i < 8; ++i) bits = bits << 8 | input_.Byte();
  bits >>= input_.Below(64);
  return input_.Below(2) == 1 ? ~bits : bits;
}

void Builder::SetNumber(Operation operation, const Place& place, JsonNode& node) {
  const std::uint64_t bits = Number();
  node.kind = Kind::kInteger;
  if (operation == Operation::kSetInt) {
    const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
    node.negative = number < 0;
    node.integer = static_cast<std::uint64_t>(std::int64_t{number});
    place.value->SetInt(number);
  } else if (operation == Operation::kSetUint) {
    node.integer = static_cast<std::uint32_t>(bits);
    place.value->SetUint(static_cast<std::uint32_t>(bits));
  } else if (operation == Operation::kSetInt64) {
    const auto number = static_cast<std::int64_t>(bits);
    node.negative = number < 0;
    node.integer = bits;
    place.value->SetInt64(number);
  } else if (operation == Operation::kSetUint64) {
    node.integer = bits;
    place.value->SetUint64(bits);
  } else {
    node.kind = Kind::kDouble;
    std::memcpy(&node.number, &bits, sizeof(node.number));
    place.value->SetDouble(node.number);
  }
}

bool Builder::Take(const Place& item, const Place& target, JsonNode& taken) {
  if (item.node == nullptr) return true;
  const bool is_lost = item.IsAbove(target);
  taken = std::move(*item.node);
  *item.node = JsonNode();
  return !is_lost;
}

void Builder::PushBack() {
  const Place target = handles_.Find();
  const Place item = handles_.Find();
  target.value->PushBack(*item.value);
  if (target.node == nullptr || target.node->kind != Kind::kArray) return;
  if (target.node == item.node) return;
  JsonNode taken;
  if (Take(item, target, taken)) target.node->children.push_back(std::move(taken));
}

void Builder::AddMember() {
  const Place target = handles_.Find();
  const Place item = handles_.Find();
  std::string name = Text();
  if (target.node == &handles_.root() && input_.Below(2) == 1) {
    document_.AddMember(FromUtf8(name), *item.value);
  } else {
    target.value->AddMember(FromUtf8(name), *item.value);
  }
  if (target.node == nullptr || target.node->kind != Kind::kObject) return;
  if (target.node == item.node) return;
  JsonNode taken;
  if (!Take(item, target, taken)) return;
  target.node->names.push_back(name.substr(0, name.find('\0')));
  target.node->children.push_back(std::move(taken));
}

void Builder::Clear() {
  const Place place = handles_.Find();
  place.value->Clear();
  if (place.node != nullptr && place.node->kind == Kind::kArray) place.node->children.clear();
}

bool Builder::Load() {
  const auto text = FromUtf8(input_.Until('\n'));
  JsonText expected = ReadJson(text.utf8());
  const bool loaded = document_.Load(text);
  if (expected.verdict == JsonText::Verdict::kEither) return false;
  FUZZ_CHECK(loaded == (expected.verdict == JsonText::Verdict::kTaken));
  handles_.root() = std::move(expected.root);
  CheckTree(Lookup::Root(document_), handles_.root());
  return true;
}

}  // namespace

void BuildAndCheck(Input& input, Document& document, JsonNode& root) {
  Builder(input, document, root).Run();
}

}  // namespace stowra_fuzz
