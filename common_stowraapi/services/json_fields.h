// Reading optional members of a JSON object into fields.

#ifndef COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_
#define COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_

#include <string_view>

#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Each leaves `field` alone when `object` has no member `name` or the member has another type.
// GetInt decides what a number becomes that is no 32-bit integer.
void ReadString(const Value& object, std::string_view name, ovrant::utils::ovrant_ustring& field);
void ReadNumber(const Value& object, std::string_view name, int& field);
void ReadBool(const Value& object, std::string_view name, bool& field);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_SERVICES_JSON_FIELDS_H_
