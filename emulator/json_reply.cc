// SPDX-License-Identifier: MIT
#include "emulator/json_reply.h"

namespace stowra_emulator {

void SetJson(httplib::Response& response, const nlohmann::ordered_json& json) {
  const auto replace = nlohmann::ordered_json::error_handler_t::replace;
  response.set_content(json.dump(2, ' ', false, replace) + "\n", "application/json");
}

void SetError(httplib::Response& response, int status, const std::string& message) {
  response.status = status;
  SetJson(response, {{"error", message}});
}

}  // namespace stowra_emulator
