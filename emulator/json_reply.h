// SPDX-License-Identifier: MIT
// Responses that hold JSON.

#ifndef EMULATOR_JSON_REPLY_H_
#define EMULATOR_JSON_REPLY_H_

#include <httplib.h>

#include <nlohmann/json.hpp>
#include <string>

namespace stowra_emulator {

// Sets the body. Bytes that are not UTF-8 become U+FFFD.
void SetJson(httplib::Response& response, const nlohmann::ordered_json& json);

// Sets the status, and {"error": message} as the body.
void SetError(httplib::Response& response, int status, const std::string& message);

}  // namespace stowra_emulator

#endif  // EMULATOR_JSON_REPLY_H_
