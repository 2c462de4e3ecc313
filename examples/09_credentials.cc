// SPDX-License-Identifier: MIT
// Sends credentials to one server and to no other. The front page of the emulator shows which
// request carried them.
//
// Run:
//   stowra-emulator --port 8080
//   09_credentials http://127.0.0.1:8080
//
// Prints:
//   with credentials: Zoë Ångström
//   without them: 山田 花子

#include <iostream>
#include <string>

#include "common_stowraapi/common_stowraapi.h"

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UserInfoQuery;

int main(int argc, char** argv) {
  const ovrant_ustring service(argc > 1 ? argv[1] : "http://127.0.0.1:8080");
  ovrant_ustring elsewhere = service;  // another name is another origin
  elsewhere.replace_all("127.0.0.1", "localhost");

  // Holds for every transfer of the process that starts from now on.
  ovrant::internet::TransferDefaults defaults;
  defaults.user_agent = "my-host/1.0";
  defaults.origin_request_headers[service]["Authorization"] = "Bearer 2f6a7b8c9d01";
  InternetData::SetDefaults(defaults);

  UserInfoQuery query;
  query.Init(service + "/user-info", nullptr);
  if (!query.SynchronousRequest()) return 1;
  std::cout << "with credentials: " << query.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey)
            << '\n';

  query.Init(elsewhere + "/user-info?user=u-1002", nullptr);
  if (!query.SynchronousRequest()) return 1;
  std::cout << "without them: " << query.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey)
            << '\n';
}
