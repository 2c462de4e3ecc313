// SPDX-License-Identifier: MIT
#include "host/check/json_member.h"

#include <fmt/format.h>

namespace stowra {

using ovrant::json::Value;

namespace {

bool Is(const Value& value, JsonType type) {
  switch (type) {
    case JsonType::kString:
      return value.IsString();
    case JsonType::kNumber:
      return value.IsNumber();
    case JsonType::kInt:
      return value.IsInt();
    case JsonType::kBool:
      return value.IsBool();
    case JsonType::kObject:
      return value.IsObject();
    case JsonType::kArray:
      return value.IsArray();
  }
  return false;
}

const char* NameOf(JsonType type) {
  switch (type) {
    case JsonType::kString:
      return "a string";
    case JsonType::kNumber:
      return "a number";
    case JsonType::kInt:
      return "a whole number of 32 bits";
    case JsonType::kBool:
      return "true or false";
    case JsonType::kObject:
      return "an object";
    case JsonType::kArray:
      return "an array";
  }
  return "";
}

}  // namespace

const char* TypeOf(const Value& value) {
  if (value.IsNull()) return "null";
  if (value.IsBool()) return "a boolean";
  if (value.IsNumber()) return "a number";
  if (value.IsString()) return "a string";
  return value.IsArray() ? "an array" : "an object";
}

bool HasTyped(const Value& object, const char* name, JsonType type, const std::string& kept,
              std::vector<Finding>& findings) {
  if (!object.HasMember(name)) {
    findings.push_back({fmt::format("it has no {}; {} kept", name, kept)});
    return false;
  }
  const Value& member = object[name];
  if (!Is(member, type)) {
    findings.push_back(
        {fmt::format("{} is {}, not {}; {} kept", name, TypeOf(member), NameOf(type), kept)});
    return false;
  }
  return true;
}

}  // namespace stowra
