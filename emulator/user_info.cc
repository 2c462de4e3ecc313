// SPDX-License-Identifier: MIT
#include <array>
#include <cstddef>

#include "emulator/json_reply.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

constexpr std::array kMembers = {"uid", "displayname", "email", "vkr_id", "locale"};

Statement FindUser(const httplib::Request& request, Database& database) {
  constexpr const char* kPicked =
      "SELECT uid, displayname, email, vkr_id, locale FROM users WHERE uid = ?";
  constexpr const char* kSignedIn =
      "SELECT uid, displayname, email, vkr_id, locale FROM users WHERE signed_in = 1";
  if (!request.has_param("user")) return database.Prepare(kSignedIn);
  Statement user = database.Prepare(kPicked);
  user.Bind(1, request.get_param_value("user"));
  return user;
}

}  // namespace

void AnswerUserInfo(const Call& call, httplib::Response& response) {
  Statement user = FindUser(call.request, call.database);
  if (!user.Step()) {
    const std::string uid = call.request.get_param_value("user");
    SetError(response, 404, uid.empty() ? "nobody is signed in" : "no user '" + uid + "'");
    return;
  }
  nlohmann::ordered_json json;
  for (std::size_t i = 0; i < kMembers.size(); ++i) {
    const int column = static_cast<int>(i);
    if (!user.IsNull(column)) json[kMembers[i]] = user.Text(column);
  }
  SetJson(response, json);
}

}  // namespace stowra_emulator
