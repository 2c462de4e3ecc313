// SPDX-License-Identifier: MIT
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "emulator/json_reply.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

using nlohmann::ordered_json;

// Parses a decimal number, independent of the locale.
std::optional<double> ParseDecimal(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  double number = 0;
  if (!(stream >> number) || !stream.eof()) return std::nullopt;
  return number;
}

// The version that the client has, as text or a number. Empty if it gives none.
std::optional<double> InstalledVersion(const ordered_json& extension) {
  const auto version = extension.find("version");
  if (version == extension.end()) return std::nullopt;
  if (version->is_number()) return version->get<double>();
  return version->is_string() ? ParseDecimal(version->get<std::string>()) : std::nullopt;
}

bool IsExtension(const ordered_json& element) {
  return element.is_object() && element.contains("id") && element["id"].is_string();
}

// The array "extensions" of the body. Empty if it is absent or holds anything but objects with an
// id.
std::optional<ordered_json> ParseRequest(const std::string& body) {
  ordered_json root = ordered_json::parse(body, nullptr, false);
  if (!root.is_object() || !root.contains("extensions")) return std::nullopt;
  // Moved, because a copy would recurse as deep as the client's nesting.
  ordered_json extensions = std::move(root["extensions"]);
  if (!extensions.is_array()) return std::nullopt;
  for (const ordered_json& element : extensions) {
    if (!IsExtension(element)) return std::nullopt;
  }
  return extensions;
}

// The state of one extension, or null if the store does not know it.
ordered_json StatusOf(const ordered_json& extension, Database& database) {
  Statement known = database.Prepare(
      "SELECT id, version_uuid, version, file_url, remote_kill, enabled FROM extensions "
      "WHERE id = ?");
  known.Bind(1, extension["id"].get<std::string>());
  if (!known.Step()) return nullptr;
  const std::optional<double> installed = InstalledVersion(extension);
  const std::optional<double> newest = ParseDecimal(known.Text(2));
  return {{"id", known.Text(0)},
          {"version_uuid", known.Text(1)},
          {"version", known.Text(2)},
          {"file_url", known.Text(3)},
          {"update", installed && newest && *installed < *newest},
          {"remote_kill", known.Int(4) == 1},
          {"enabled", known.Int(5)}};
}

}  // namespace

void AnswerExtensions(const Call& call, httplib::Response& response) {
  const std::optional<ordered_json> asked = ParseRequest(call.body.text);
  if (!asked) {
    SetError(response, 400,
             R"(the body must be JSON such as {"extensions": [{"id": "...", "version": "1.0"}]})");
    return;
  }
  ordered_json statuses = ordered_json::array();
  for (const ordered_json& extension : *asked) {
    ordered_json status = StatusOf(extension, call.database);
    if (!status.is_null()) statuses.push_back(std::move(status));
  }
  SetJson(response, {{"extensions", statuses}});
}

}  // namespace stowra_emulator
