// SPDX-License-Identifier: MIT
#include "host/signal_watcher.h"

#include <pthread.h>
#include <unistd.h>

#include <utility>

namespace stowra {

namespace {

// Wakes the thread at the end. It is in signals_ even if it is ignored.
constexpr int kWakeUp = SIGTERM;

bool IsIgnored(int signal) {
  struct sigaction action = {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

SignalWatcher::SignalWatcher() {
  sigemptyset(&signals_);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    if (signal == kWakeUp || !IsIgnored(signal)) sigaddset(&signals_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals_, &former_mask_);
}

SignalWatcher::~SignalWatcher() {
  Stop();
  pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
}

void SignalWatcher::Start(Action action) {
  action_ = std::move(action);
  thread_ = std::thread([this] { Watch(); });
}

void SignalWatcher::Stop() {
  if (!thread_.joinable()) return;
  is_over_ = true;
  pthread_kill(thread_.native_handle(), kWakeUp);
  thread_.join();
}

void SignalWatcher::DieOf(int signal) {
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  kill(getpid(), signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
}

void SignalWatcher::Watch() {
  while (true) {
    int signal = 0;
    sigwait(&signals_, &signal);
    if (is_over_) return;
    if (!IsIgnored(signal)) action_(signal);
  }
}

}  // namespace stowra
