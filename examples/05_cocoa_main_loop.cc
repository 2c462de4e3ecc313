// SPDX-License-Identifier: MIT
// The background request of a host whose main loop is Cocoa's. The loop runs what is on the main
// queue of libdispatch.
//
// Run:
//   stowra-emulator --port 8080
//   05_cocoa_main_loop http://127.0.0.1:8080
//
// Prints:
//   24.0.484 is current

#include <dispatch/dispatch.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"
#include "update_observer.h"

namespace {

using Task = std::function<void()>;

void RunTask(void* task) { (*std::unique_ptr<Task>(static_cast<Task*>(task)))(); }

// May be called from any thread.
void PostToLoop(Task task) {
  dispatch_async_f(dispatch_get_main_queue(), new Task(std::move(task)), RunTask);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  ovrant::internet::InternetData::SetCompletionExecutor(PostToLoop);
  ovrant::webservices::UpdateQuery query;
  const UpdateObserver observer([&query](bool succeeded) {
    if (succeeded) std::cout << query.current_version_ << " is current" << std::endl;
    std::exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
  });
  query.Init((service + "/update").c_str(), nullptr);
  query.AsynchronousRequest();
  dispatch_main();  // an application calls [NSApp run] instead
}
