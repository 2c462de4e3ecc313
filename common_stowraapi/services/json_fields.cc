#include "common_stowraapi/services/json_fields.h"

namespace ovrant::json {

using ovrant::utils::ovrant_ustring;

void ReadString(const Value& object, const char* name, ovrant_ustring& field) {
  const Value& member = object[ovrant_ustring(name)];
  if (member.IsString()) field = member.GetString();
}

void ReadNumber(const Value& object, const char* name, int& field) {
  const Value& member = object[ovrant_ustring(name)];
  if (member.IsNumber()) field = member.GetInt();
}

void ReadBool(const Value& object, const char* name, bool& field) {
  const Value& member = object[ovrant_ustring(name)];
  if (member.IsBool()) field = member.GetBool();
}

}  // namespace ovrant::json
