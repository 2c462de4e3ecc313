// SPDX-License-Identifier: MIT
// The background request of a host whose main loop is GLib's.
//
// Run:
//   stowra-emulator --port 8080
//   03_glib_main_loop http://127.0.0.1:8080
//
// Prints:
//   24.0.484 is current

#include <glib.h>

#include <functional>
#include <iostream>
#include <string>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"
#include "update_observer.h"

namespace {

using Task = std::function<void()>;

gboolean RunTask(gpointer task) {
  (*static_cast<Task*>(task))();
  return G_SOURCE_REMOVE;
}

void DeleteTask(gpointer task) { delete static_cast<Task*>(task); }

// May be called from any thread. The loop deletes the task after the call, or when it is destroyed.
void PostToLoop(Task task) {
  g_idle_add_full(G_PRIORITY_DEFAULT, RunTask, new Task(std::move(task)), DeleteTask);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  ovrant::internet::InternetData::SetCompletionExecutor(PostToLoop);
  GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
  ovrant::webservices::UpdateQuery query;
  int status = 1;
  const UpdateObserver observer([&](bool succeeded) {
    if (succeeded) {
      std::cout << query.current_version_ << " is current\n";
      status = 0;
    }
    g_main_loop_quit(loop);
  });
  query.Init((service + "/update").c_str(), nullptr);
  query.AsynchronousRequest();
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
  ovrant::internet::InternetData::SetCompletionExecutor(nullptr);
  return status;
}
