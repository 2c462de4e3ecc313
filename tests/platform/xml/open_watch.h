// SPDX-License-Identifier: MIT
// Noticing that a file is opened.

#ifndef TESTS_PLATFORM_XML_OPEN_WATCH_H_
#define TESTS_PLATFORM_XML_OPEN_WATCH_H_

#if defined(__linux__)
#define STOWRA_WATCHES_OPENED_FILES

#include <sys/inotify.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace stowra_test {

// Watches every folder under one, itself included, for files that anything opens or looks through.
class OpenWatch {
 public:
  explicit OpenWatch(const std::filesystem::path& folder)
      : queue_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    Watch(folder);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.is_directory()) Watch(entry.path());
    }
    TakeCount();  // Looking for the folders opened them.
  }
  ~OpenWatch() { close(queue_); }

  OpenWatch(const OpenWatch&) = delete;
  OpenWatch& operator=(const OpenWatch&) = delete;

  // How many files and folders were opened since the last call.
  int TakeCount() const {
    int count = 0;
    char buffer[16 * 1024];
    for (ssize_t size = 0; (size = read(queue_, buffer, sizeof(buffer))) > 0;) {
      for (ssize_t offset = 0; offset < size; ++count) {
        inotify_event event;
        std::memcpy(&event, buffer + offset, sizeof(event));
        offset += static_cast<ssize_t>(sizeof(event) + event.len);
      }
    }
    return count;
  }

 private:
  void Watch(const std::filesystem::path& folder) const {
    if (inotify_add_watch(queue_, folder.c_str(), IN_OPEN | IN_ACCESS) < 0) {
      throw std::runtime_error("cannot watch " + folder.string());
    }
  }

  const int queue_;
};

// The working folder of this program while one lives.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& folder)
      : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }

  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  const std::filesystem::path before_;
};

}  // namespace stowra_test

#endif  // __linux__

#endif  // TESTS_PLATFORM_XML_OPEN_WATCH_H_
