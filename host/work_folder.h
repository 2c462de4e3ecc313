// A place for the files of one command.

#ifndef HOST_WORK_FOLDER_H_
#define HOST_WORK_FOLDER_H_

#include <csignal>

#include <atomic>
#include <string>
#include <thread>

namespace stowra {

// A new folder in the system's temporary one, removed with what is in it: also when SIGHUP, SIGINT
// or SIGTERM ends the program, unless that is ignored. Belongs to the main thread, must be made
// before any other thread, and holds these signals back from the threads that come after it. One at
// a time in a process.
class WorkFolder {
 public:
  // Throws std::system_error when there can be no such folder.
  WorkFolder();
  ~WorkFolder();

  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  void WatchSignals();
  void Remove() const;

  std::string path_;
  sigset_t signals_;      // that are waited for
  sigset_t former_mask_;  // of the main thread
  std::atomic<bool> is_over_ = false;
  std::thread watcher_;
};

}  // namespace stowra

#endif  // HOST_WORK_FOLDER_H_
