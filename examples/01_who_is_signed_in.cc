// SPDX-License-Identifier: MIT
// Asks the account service who is signed in, and waits for the answer.
//
// Run:
//   stowra-emulator --port 8080
//   01_who_is_signed_in http://127.0.0.1:8080
//
// Prints:
//   Zoë Ångström <zoe@example.com>

#include <iostream>
#include <string>

#include "common_stowraapi/common_stowraapi.h"

using ovrant::webservices::UserInfoQuery;

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  UserInfoQuery query;
  query.Init((service + "/user-info").c_str(), nullptr);
  if (!query.SynchronousRequest()) {
    std::cerr << "no answer, or nobody is signed in\n";
    return 1;
  }
  std::cout << query.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey) << " <"
            << query.GetUserInfoValue(UserInfoQuery::kUserEmailKey) << ">\n";
}
