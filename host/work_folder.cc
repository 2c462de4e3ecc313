#include "host/work_folder.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace stowra {

namespace {

// Wakes the watcher at the end; it is one of those that it waits for, ignored or not.
constexpr int kWakeUp = SIGTERM;

constexpr int kMaxRemovals = 100;

bool IsIgnored(int signal) {
  struct sigaction action = {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Ends the process as if nobody had waited for the signal.
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

// Again while the main thread may be putting something there.
void WorkFolder::Remove() const {
  std::error_code error;
  for (int i = 0; i < kMaxRemovals; ++i) {
    std::filesystem::remove_all(path_, error);
    if (!error) return;
  }
}

}  // namespace stowra
