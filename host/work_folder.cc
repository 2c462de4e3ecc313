// SPDX-License-Identifier: MIT
#include "host/work_folder.h"

#include <unistd.h>  // mkdtemp on macOS

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace stowra {

namespace {

constexpr int kMaxRemovals = 100;

}  // namespace

WorkFolder::WorkFolder()
    : path_((std::filesystem::temp_directory_path() / "stowra-demo-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), path_);
  }
  watcher_.Start([this](int signal) {
    Remove();
    SignalWatcher::DieOf(signal);
  });
}

WorkFolder::~WorkFolder() { Remove(); }

// Tries again, since the main thread may still be adding files.
void WorkFolder::Remove() const {
  std::error_code error;
  for (int i = 0; i < kMaxRemovals; ++i) {
    std::filesystem::remove_all(path_, error);
    if (!error) return;
  }
}

}  // namespace stowra
