// SPDX-License-Identifier: MIT
// Noticing that a file is opened or a server is called.

#ifndef TESTS_PLATFORM_XML_OPEN_WATCH_H_
#define TESTS_PLATFORM_XML_OPEN_WATCH_H_

#include <filesystem>

namespace stowra_test {

#if defined(__linux__)
#define STOWRA_WATCHES_OPENED_FILES

// Watches every folder under one, itself included, for files that anything opens or looks through.
class OpenWatch {
 public:
  explicit OpenWatch(const std::filesystem::path& folder);
  ~OpenWatch();

  OpenWatch(const OpenWatch&) = delete;
  OpenWatch& operator=(const OpenWatch&) = delete;

  // How many files and folders were opened since the last call.
  int TakeCount();

 private:
  int queue_;
};
#endif

// The working folder of this program while one lives.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& folder);
  ~WorkingFolder();

  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  std::filesystem::path before_;
};

// A port of this machine that answers nothing, and knows whether anyone has called.
class SilentPort {
 public:
  SilentPort();
  ~SilentPort();

  SilentPort(const SilentPort&) = delete;
  SilentPort& operator=(const SilentPort&) = delete;

  int number() const { return number_; }
  bool WasCalled() const;

 private:
  int socket_;
  int number_ = 0;
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_XML_OPEN_WATCH_H_
