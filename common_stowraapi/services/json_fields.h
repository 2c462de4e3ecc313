// SPDX-License-Identifier: MIT
// Reads optional members of a JSON object into fields.

#ifndef COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_
#define COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_

#include <string_view>

#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Leave `field` unchanged when `object` has no member `name` or it has another type. ReadNumber
// takes any number and converts it as Value::GetInt does.
void ReadString(const Value& object, std::string_view name, ovrant::utils::ovrant_ustring& field);
void ReadNumber(const Value& object, std::string_view name, int& field);
void ReadBool(const Value& object, std::string_view name, bool& field);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_
