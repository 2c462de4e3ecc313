// SPDX-License-Identifier: MIT
// The background request of a host whose main loop is Qt's.
//
// Run:
//   stowra-emulator --port 8080
//   04_qt_main_loop http://127.0.0.1:8080
//
// Prints:
//   24.0.484 is current

#include <QCoreApplication>
#include <QMetaObject>
#include <functional>
#include <iostream>
#include <string>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"
#include "update_observer.h"

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  // May be called from any thread. The completion runs on the thread of `app`.
  ovrant::internet::InternetData::SetCompletionExecutor([&app](std::function<void()> completion) {
    QMetaObject::invokeMethod(&app, std::move(completion), Qt::QueuedConnection);
  });
  ovrant::webservices::UpdateQuery query;
  const UpdateObserver observer([&query](bool succeeded) {
    if (succeeded) std::cout << query.current_version_ << " is current\n";
    QCoreApplication::exit(succeeded ? 0 : 1);
  });
  query.Init((service + "/update").c_str(), nullptr);
  query.AsynchronousRequest();
  const int status = QCoreApplication::exec();
  ovrant::internet::InternetData::SetCompletionExecutor(nullptr);
  return status;
}
