// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/json_fields.h"

#include "common_stowraapi/json/lookup.h"

namespace ovrant::json {

using ovrant::utils::ovrant_ustring;

void ReadString(const Value& object, std::string_view name, ovrant_ustring& field) {
  const Value member = Lookup::Member(object, name);
  if (member.IsString()) field = member.GetString();
}

void ReadNumber(const Value& object, std::string_view name, int& field) {
  const Value member = Lookup::Member(object, name);
  if (member.IsNumber()) field = member.GetInt();
}

void ReadBool(const Value& object, std::string_view name, bool& field) {
  const Value member = Lookup::Member(object, name);
  if (member.IsBool()) field = member.GetBool();
}

}  // namespace ovrant::json
