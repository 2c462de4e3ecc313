// SPDX-License-Identifier: MIT
// A separate project that uses the installed library.

#include <cstdio>
#include <cstring>

#include "common_stowraapi/common_stowraapi.h"

int main() {
  ovrant::webservices::UserInfoQuery query;
  const bool parsed = query.ParseResponse(R"({"uid":"7","email":"a@b.example","vkr_id":"v"})");
  const bool read = query.GetUserInfoValue(query.kUserIdKey) == "7";
  const char* const version = reinterpret_cast<const char*>(CommonStowraapiVersionString);
  const bool named = std::strstr(version, "CommonStowraapi") != nullptr;
  std::printf("%s", version);
  return parsed && read && named && CommonStowraapiVersionNumber > 0 ? 0 : 1;
}
