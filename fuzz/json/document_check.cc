// SPDX-License-Identifier: MIT
#include "fuzz/json/document_check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/json/lookup.h"
#include "fuzz/json/document_text.h"
#include "fuzz/support/check.h"

namespace stowra_fuzz {
namespace {

using ovrant::json::Document;
using ovrant::json::Lookup;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;
using Kind = JsonNode::Kind;

// Children that are looked up, not only walked over: a look-up by name goes through the names
// before it.
constexpr std::size_t kManyChildren = 24;

template <typename Integer>
Integer Cut(double value) {
  if (std::isnan(value)) return 0;
  const double whole = std::trunc(value);
  const double end = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
  const double begin = std::numeric_limits<Integer>::is_signed ? -end : 0.0;
  return begin <= whole && whole < end ? static_cast<Integer>(whole) : Integer{0};
}

void CheckTypes(const Value& value, const JsonNode& model) {
  FUZZ_CHECK(value.IsNull() == (model.kind == Kind::kNull));
  FUZZ_CHECK(value.IsFalse() == (model.kind == Kind::kFalse));
  FUZZ_CHECK(value.IsTrue() == (model.kind == Kind::kTrue));
  FUZZ_CHECK(value.IsBool() == (model.kind == Kind::kTrue || model.kind == Kind::kFalse));
  FUZZ_CHECK(value.GetBool() == (model.kind == Kind::kTrue));
  FUZZ_CHECK(value.IsObject() == (model.kind == Kind::kObject));
  FUZZ_CHECK(value.IsArray() == (model.kind == Kind::kArray));
  FUZZ_CHECK(value.IsString() == (model.kind == Kind::kString));
  FUZZ_CHECK(value.IsNumber() == model.IsNumber());
  FUZZ_CHECK(value.IsDouble() == (model.kind == Kind::kDouble));
  FUZZ_CHECK(value.Size() == model.children.size());
  FUZZ_CHECK(value.GetString().utf8() == (value.IsString() ? Shown(model.text) : std::string()));
}

void CheckInteger(const Value& value, const JsonNode& model) {
  const std::uint64_t bits = model.integer;
  const auto as_signed = static_cast<std::int64_t>(bits);
  constexpr std::int64_t kMin32 = std::numeric_limits<std::int32_t>::min();
  FUZZ_CHECK(value.IsInt() == (model.negative ? as_signed >= kMin32 : bits < 1ULL << 31));
  FUZZ_CHECK(value.IsUint() == (!model.negative && bits < 1ULL << 32));
  FUZZ_CHECK(value.IsInt64() == (model.negative || bits < 1ULL << 63));
  FUZZ_CHECK(value.IsUint64() == !model.negative);
  FUZZ_CHECK(value.GetInt() == static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
  FUZZ_CHECK(value.GetUint() == static_cast<std::uint32_t>(bits));
  FUZZ_CHECK(value.GetInt64() == as_signed);
  FUZZ_CHECK(value.GetUint64() == bits);
  FUZZ_CHECK(value.GetDouble() ==
             (model.negative ? static_cast<double>(as_signed) : static_cast<double>(bits)));
}

void CheckNoInteger(const Value& value, JsonNode& model) {
  FUZZ_CHECK(!value.IsInt() && !value.IsUint() && !value.IsInt64() && !value.IsUint64());
  const double number = value.GetDouble();
  if (model.kind == Kind::kDouble) {
    FUZZ_CHECK(IsNear(number, model));
    model.number = number;
    model.error = 0;
  } else {
    FUZZ_CHECK(number == 0);
  }
  FUZZ_CHECK(value.GetInt() == Cut<std::int32_t>(number));
  FUZZ_CHECK(value.GetUint() == Cut<std::uint32_t>(number));
  FUZZ_CHECK(value.GetInt64() == Cut<std::int64_t>(number));
  FUZZ_CHECK(value.GetUint64() == Cut<std::uint64_t>(number));
}

// What is looked for and is not there reads as null, and is not added.
void CheckMissing(const Value& value, const JsonNode& model) {
  const auto size = static_cast<unsigned int>(model.children.size());
  FUZZ_CHECK(value[model.kind == Kind::kArray ? size : 0].IsNull());
  FUZZ_CHECK(value[std::numeric_limits<unsigned int>::max()].IsNull());
  const std::string_view name = "no such name";
  if (model.Find(name) != nullptr) return;
  FUZZ_CHECK(!value.HasMember(FromUtf8(name)));
  FUZZ_CHECK(value[FromUtf8(name)].IsNull());
  FUZZ_CHECK(value.Size() == size);
}

// A handle that owns nothing, and what it should refer to.
struct Pair {
  Value value;
  JsonNode* model;
};

// The children as the handle's own operations find them.
void CheckLookUps(const Value& value, const JsonNode& model) {
  const std::size_t end = std::min(model.children.size(), kManyChildren);
  for (std::size_t i = 0; i < end; ++i) {
    if (model.kind == Kind::kArray) {
      CheckTypes(value[static_cast<unsigned int>(i)], model.children[i]);
      continue;
    }
    const ovrant_ustring name = FromUtf8(model.names[i]);
    const JsonNode* const first = model.Find(name.utf8());
    FUZZ_CHECK(value.HasMember(name) == (first != nullptr));
    CheckTypes(value[name], first == nullptr ? JsonNode() : *first);
  }
}

void CheckNode(const Value& value, JsonNode& model) {
  CheckTypes(value, model);
  if (model.kind == Kind::kInteger) {
    CheckInteger(value, model);
  } else {
    CheckNoInteger(value, model);
  }
  CheckMissing(value, model);
  CheckLookUps(value, model);
}

void AddChildren(const Value& value, JsonNode& model, std::vector<Pair>& open) {
  for (std::size_t i = 0; i < model.children.size(); ++i) {
    const auto index = static_cast<unsigned int>(i);
    const Value child =
        model.kind == Kind::kArray ? Lookup::Element(value, index) : Lookup::MemberAt(value, index);
    open.push_back({child, &model.children[i]});
  }
}

// The root as the document's own operations give it.
void CheckRoot(Document& document, const JsonNode& model) {
  const bool is_object = model.kind == Kind::kObject;
  const auto count = static_cast<unsigned int>(is_object ? model.children.size() : 0);
  FUZZ_CHECK(document.MemberCount() == count);
  FUZZ_CHECK(document.MemberAt(count).IsNull());
  FUZZ_CHECK(document.MemberNameAt(count).empty());
  for (unsigned int i = 0; i < count; ++i) {
    const std::string& name = model.names[i];
    CheckTypes(document.MemberAt(i), model.children[i]);
    FUZZ_CHECK(document.MemberNameAt(i).utf8() == Shown(name));
    if (i >= kManyChildren) continue;
    const JsonNode* const first = model.Find(FromUtf8(name).utf8());
    FUZZ_CHECK(document.HasMember(FromUtf8(name)) == (first != nullptr));
    CheckTypes(document[FromUtf8(name)], first == nullptr ? JsonNode() : *first);
  }
}

}  // namespace

ovrant_ustring FromUtf8(std::string_view utf8) {
  return ovrant_ustring(utf8.data(), static_cast<unsigned long>(utf8.size()));
}

void CheckTree(const Value& value, JsonNode& model) {
  CheckNode(value, model);
  std::vector<Pair> open;
  AddChildren(value, model, open);
  while (!open.empty()) {
    const Pair pair = open.back();
    open.pop_back();
    CheckNode(pair.value, *pair.model);
    AddChildren(pair.value, *pair.model, open);
  }
}

std::string CheckDocument(Document& document, const JsonNode& model) {
  CheckRoot(document, model);
  ovrant_ustring written("of an earlier time");
  document.ToString(written);
  CheckText(written.utf8(), model);
  return written.utf8();
}

bool HasSameDoubles(const JsonNode& a, const JsonNode& b) {
  std::vector<std::pair<const JsonNode*, const JsonNode*>> open{{&a, &b}};
  while (!open.empty()) {
    const auto [left, right] = open.back();
    open.pop_back();
    if (left->number != right->number) return false;
    for (std::size_t i = 0; i < left->children.size(); ++i) {
      open.emplace_back(&left->children[i], &right->children[i]);
    }
  }
  return true;
}

bool HasUnspellableNumber(const JsonNode& model) {
  std::vector<const JsonNode*> open{&model};
  while (!open.empty()) {
    const JsonNode& node = *open.back();
    open.pop_back();
    if (node.kind == Kind::kDouble && !std::isfinite(node.number)) return true;
    for (const JsonNode& child : node.children) open.push_back(&child);
  }
  return false;
}

}  // namespace stowra_fuzz
