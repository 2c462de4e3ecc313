// SPDX-License-Identifier: MIT
// consumer [EMULATOR_URL]: a separate project that uses the installed library.

#include <cstdio>
#include <cstring>

#include "common_stowraapi/common_stowraapi.h"

namespace {

// Prints what the content service at `service` finds.
bool Search(const char* service) {
  ovrant::stowraapiclient::ContentQuery query;
  const bool found = query.QueryFeed(ovrant::utils::ovrant_ustring(service) + "/search?q=chair");
  for (const auto* item : query.items_) std::puts(item->title_.utf8().c_str());
  return found && !query.items_.empty();
}

}  // namespace

int main(int argc, char** argv) {
  ovrant::webservices::UserInfoQuery query;
  const bool parsed = query.ParseResponse(R"({"uid":"7","email":"a@b.example","vkr_id":"v"})");
  const bool read = query.GetUserInfoValue(query.kUserIdKey) == "7";
  const char* const version = reinterpret_cast<const char*>(CommonStowraapiVersionString);
  const bool named = std::strstr(version, "CommonStowraapi") != nullptr;
  std::printf("%s", version);
  const bool found = argc < 2 || Search(argv[1]);
  return parsed && read && named && found && CommonStowraapiVersionNumber > 0 ? 0 : 1;
}
