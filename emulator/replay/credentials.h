// SPDX-License-Identifier: MIT
// Taking credentials out of what is recorded.

#ifndef EMULATOR_REPLAY_CREDENTIALS_H_
#define EMULATOR_REPLAY_CREDENTIALS_H_

#include <string>

#include "emulator/http_fields.h"

namespace stowra_emulator {

// What stands in place of a credential.
constexpr const char* kBlank = "blanked";

// Blanks the values of fields such as Authorization, Cookie, Set-Cookie and X-Api-Key, and the
// credentials in addresses in the other values.
HttpFields WithoutCredentials(HttpFields fields);

// Blanks user name and password in every address in the text, and query parameters such as
// "token=...".
std::string WithoutCredentials(std::string text);

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_CREDENTIALS_H_
