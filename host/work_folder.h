// SPDX-License-Identifier: MIT
// A temporary folder for the files of one command.

#ifndef HOST_WORK_FOLDER_H_
#define HOST_WORK_FOLDER_H_

#include <csignal>

#include <atomic>
#include <string>
#include <thread>

namespace stowra {

// A new folder in the system's temporary folder. The destructor removes it with its content. If
// SIGHUP, SIGINT or SIGTERM ends the program, the folder is removed first. Ignored signals stay
// ignored. Belongs to the main thread. Make it before any other thread, since it blocks these
// signals for the threads that start later. One at a time in a process.
class WorkFolder {
 public:
  // Throws std::system_error if the folder cannot be made.
  WorkFolder();
  ~WorkFolder();

  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  void WatchSignals();
  void Remove() const;

  std::string path_;
  sigset_t signals_;      // the watcher waits for these
  sigset_t former_mask_;  // of the main thread
  std::atomic<bool> is_over_ = false;
  std::thread watcher_;
};

}  // namespace stowra

#endif  // HOST_WORK_FOLDER_H_
