// SPDX-License-Identifier: MIT
// A temporary folder for the files of one command.

#ifndef HOST_WORK_FOLDER_H_
#define HOST_WORK_FOLDER_H_

#include <string>

#include "host/signal_watcher.h"

namespace stowra {

// A new folder in the system's temporary folder. The destructor removes it with its content. If
// SIGHUP, SIGINT or SIGTERM ends the program, the folder is removed first. The rules for a
// SignalWatcher apply.
class WorkFolder {
 public:
  // Throws std::system_error if the folder cannot be made.
  WorkFolder();
  ~WorkFolder();

  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  void Remove() const;

  std::string path_;
  SignalWatcher watcher_;
};

}  // namespace stowra

#endif  // HOST_WORK_FOLDER_H_
