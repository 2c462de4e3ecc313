// SPDX-License-Identifier: MIT
// Asks the update service in the background. The end arrives on the main thread, through the queue
// of main_queue.h.
//
// Run:
//   stowra-emulator --port 8080
//   02_background_update http://127.0.0.1:8080
//
// Prints:
//   asked, and free to do other work
//   the end arrives on the main thread
//   24.0.484 is current, 3 data files to fetch

#include <iostream>
#include <string>
#include <thread>

#include "common_stowraapi/common_stowraapi.h"
#include "main_queue.h"
#include "update_observer.h"

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  const std::thread::id main_thread = std::this_thread::get_id();
  MainQueue queue;
  bool done = false;
  bool succeeded = false;
  const UpdateObserver observer([&](bool outcome) {
    if (std::this_thread::get_id() == main_thread) {
      std::cout << "the end arrives on the main thread\n";
    }
    succeeded = outcome;
    done = true;
  });

  ovrant::webservices::UpdateQuery query;
  query.Init((service + "/update").c_str(), nullptr);
  query.AsynchronousRequest();
  std::cout << "asked, and free to do other work\n";
  queue.RunUntil(done);
  if (!succeeded) return 1;
  std::cout << query.current_version_ << " is current, " << query.data_files_.size()
            << " data files to fetch\n";
}
