// SPDX-License-Identifier: MIT
// Forms in the body of a request.

#ifndef EMULATOR_FORM_FIELDS_H_
#define EMULATOR_FORM_FIELDS_H_

#include <map>
#include <string>
#include <string_view>

namespace stowra_emulator {

using FormFields = std::map<std::string, std::string>;

// Reads application/x-www-form-urlencoded. Of a repeated field, the last one counts.
FormFields ParseForm(std::string_view body);

}  // namespace stowra_emulator

#endif  // EMULATOR_FORM_FIELDS_H_
