// SPDX-License-Identifier: MIT
#include "host/work_folder.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace stowra {

namespace {

// Wakes the watcher when the folder is destroyed. It is in signals_ even if it is ignored.
constexpr int kWakeUp = SIGTERM;

constexpr int kMaxRemovals = 100;

bool IsIgnored(int signal) {
  struct sigaction action = {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Sends the signal again, unblocked, so that it ends the process.
void DieOf(int signal) {
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  kill(getpid(), signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
}

}  // namespace

WorkFolder::WorkFolder()
    : path_((std::filesystem::temp_directory_path() / "stowra-demo-XXXXXX").string()) {
  sigemptyset(&signals_);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    if (signal == kWakeUp || !IsIgnored(signal)) sigaddset(&signals_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals_, &former_mask_);
  if (mkdtemp(path_.data()) == nullptr) {
    const int error = errno;
    pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
    throw std::system_error(error, std::generic_category(), path_);
  }
  watcher_ = std::thread([this] { WatchSignals(); });
}

WorkFolder::~WorkFolder() {
  is_over_ = true;
  pthread_kill(watcher_.native_handle(), kWakeUp);
  watcher_.join();
  Remove();
  pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
}

void WorkFolder::WatchSignals() {
  while (true) {
    int signal = 0;
    sigwait(&signals_, &signal);
    if (is_over_) return;
    if (IsIgnored(signal)) continue;
    Remove();
    DieOf(signal);
  }
}

// Tries again, since the main thread may still be adding files.
void WorkFolder::Remove() const {
  std::error_code error;
  for (int i = 0; i < kMaxRemovals; ++i) {
    std::filesystem::remove_all(path_, error);
    if (!error) return;
  }
}

}  // namespace stowra
