// SPDX-License-Identifier: MIT
// A host that brings its own platform, here Qt: the services run on the host's own text, transport
// and notifications. The other files of this folder take the place of libCommonStowraapiPlatform.
//
// Run:
//   stowra-emulator --port 8080
//   10_own_platform http://127.0.0.1:8080
//
// Prints:
//   Zoë Ångström is signed in
//   24.0.484 is current

#include <QCoreApplication>
#include <iostream>
#include <string>

#include "../update_observer.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"

using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

int main(int argc, char** argv) {
  const QCoreApplication app(argc, argv);
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";

  UserInfoQuery user;
  user.Init((service + "/user-info").c_str(), nullptr);
  if (!user.SynchronousRequest()) return 1;
  std::cout << user.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey) << " is signed in\n";

  UpdateQuery update;
  const UpdateObserver observer([&update](bool succeeded) {
    if (succeeded) std::cout << update.current_version_ << " is current\n";
    QCoreApplication::exit(succeeded ? 0 : 1);
  });
  update.Init((service + "/update").c_str(), nullptr);
  update.AsynchronousRequest();
  return QCoreApplication::exec();
}
