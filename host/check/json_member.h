// SPDX-License-Identifier: MIT
// Explains what the library makes of one member of a JSON object.

#ifndef HOST_CHECK_JSON_MEMBER_H_
#define HOST_CHECK_JSON_MEMBER_H_

#include <string>
#include <vector>

#include "common_stowraapi/json/value.h"
#include "host/check/check_report.h"

namespace stowra {

enum class JsonType { kString, kNumber, kInt, kBool, kObject, kArray };

// How a finding names a kept text that is empty.
inline constexpr char kEmptyText[] = "the empty text";

// Such as "a number".
const char* TypeOf(const ovrant::json::Value& value);

// Whether `object` has the member with the type. If not, adds a finding, which says that the
// library keeps `kept` instead.
bool HasTyped(const ovrant::json::Value& object, const char* name, JsonType type,
              const std::string& kept, std::vector<Finding>& findings);

}  // namespace stowra

#endif  // HOST_CHECK_JSON_MEMBER_H_
