// SPDX-License-Identifier: MIT
// A second reading of JSON, by another parser than the library's, into a tree of plain values.

#ifndef FUZZ_JSON_JSON_MODEL_H_
#define FUZZ_JSON_JSON_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_fuzz {

// One value. Objects keep every member, in order, of one name too.
struct JsonNode {
  enum class Kind { kNull, kFalse, kTrue, kObject, kArray, kString, kInteger, kDouble };

  bool IsContainer() const { return kind == Kind::kObject || kind == Kind::kArray; }
  bool IsNumber() const { return kind == Kind::kInteger || kind == Kind::kDouble; }

  // The first member of that name. Null if it is missing or this is not an object.
  JsonNode* Find(std::string_view name);
  const JsonNode* Find(std::string_view name) const;

  Kind kind = Kind::kNull;
  bool negative = false;      // an integer, and below zero
  std::uint64_t integer = 0;  // its bits
  double number = 0;
  double error = 0;                // by how much the library may be off `number`
  std::string text;                // as the library holds it, NULs included
  std::vector<std::string> names;  // of an object's members
  std::vector<JsonNode> children;  // elements or members
};

struct JsonText {
  enum class Verdict { kTaken, kRefused, kEither };

  Verdict verdict = Verdict::kRefused;
  JsonNode root;  // unless kRefused
};

// The expected result of json::Document::Load for a UTF-8 text.
JsonText ReadJson(std::string_view utf8);

// A stored text as a getter returns it: up to its first NUL, with U+FFFD for invalid UTF-8.
std::string Shown(const std::string& held);

// Whether `value` is `node`'s number, as far as that is settled.
bool IsNear(double value, const JsonNode& node);

// Read members of a response into fields. A field keeps its value if its member is missing or has
// another type.
void TakeText(const JsonNode& object, std::string_view name, std::string& field);
void TakeBool(const JsonNode& object, std::string_view name, bool& field);

// The two values that the library may read from a number as an int. They differ only for a double
// at the edge between integers.
struct IntRange {
  int low = 0;
  int high = 0;
};
void TakeInt(const JsonNode& object, std::string_view name, IntRange& field);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_JSON_MODEL_H_
