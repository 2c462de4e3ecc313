// SPDX-License-Identifier: MIT
#include <utility>

#include "emulator/json_reply.h"
#include "emulator/services.h"

namespace stowra_emulator {

void AnswerUpdate(const Call& call, httplib::Response& response) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();

  Statement version = call.database.Prepare(
      "SELECT current_version, expire_version FROM application_versions ORDER BY id DESC LIMIT 1");
  if (version.Step()) {
    json["update"] = {{"current_version", version.Text(0)}, {"expire_version", version.Text(1)}};
  }

  Statement message = call.database.Prepare(
      "SELECT id, max_shows, width, height, title, url FROM messages ORDER BY id DESC LIMIT 1");
  if (message.Step()) {
    json["message"] = {{"id", message.Int(0)},     {"max_shows", message.Int(1)},
                       {"width", message.Int(2)},  {"height", message.Int(3)},
                       {"title", message.Text(4)}, {"url", message.Text(5)}};
  }

  json["datafiles"] = nlohmann::ordered_json::array();
  Statement file =
      call.database.Prepare("SELECT version, filename, url FROM data_files ORDER BY position");
  while (file.Step()) {
    json["datafiles"].push_back(
        {{"version", file.Int(0)}, {"filename", file.Text(1)}, {"url", file.Text(2)}});
  }
  SetJson(response, json);
}

}  // namespace stowra_emulator
