// SPDX-License-Identifier: MIT
// The fields in the head of a message.

#ifndef EMULATOR_HTTP_FIELDS_H_
#define EMULATOR_HTTP_FIELDS_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_emulator {

// Name and value, in the order of the message.
using HttpFields = std::vector<std::pair<std::string, std::string>>;

// Begins the name of a hidden field.
constexpr std::string_view kHidden = "Emulator-";

// Compares ASCII letters without regard to case.
bool EqualNames(std::string_view first, std::string_view second);

// The fields after the first line of `head`. Leaves out lines without a colon.
HttpFields ParseFields(std::string_view head);

// The value of the first field of that name, or empty.
std::string FieldValue(const HttpFields& fields, std::string_view name);

// Puts kHidden before the name of each field with that name, so that the engine does not see it.
void HideField(std::string& head, std::string_view name);

// True for fields that are about one connection, such as Connection and Transfer-Encoding.
bool IsConnectionField(std::string_view name);

}  // namespace stowra_emulator

#endif  // EMULATOR_HTTP_FIELDS_H_
