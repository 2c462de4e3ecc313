// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/background_worker.h"

#if defined(__APPLE__)
#include <dlfcn.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <new>
#include <system_error>
#include <utility>

#include "common_stowraapi/platform/http/transfer_settings.h"
#include "common_stowraapi/platform/notify/delivery.h"

namespace ovrant::internet {

namespace {

// Keeps this library loaded, because the thread runs its code. Only Apple systems need it:
// elsewhere the linker option -z nodelete does that.
void PinThisLibrary() {
#if defined(__APPLE__)
  Dl_info info;
  if (dladdr(reinterpret_cast<const void*>(&PinThisLibrary), &info) != 0) {
    dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
#endif
}

// How long process exit waits for the thread, which may be inside a host function.
constexpr std::chrono::milliseconds kExitWait(500);

// True from the moment the worker exists. Avoids creating the worker only to wake it.
std::atomic<bool> worker_exists{false};

// While it lives, the thread blocks the signals that other threads can handle as well. A thread
// that starts meanwhile blocks them for good, so the host's handlers do not run there.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t signals;
    sigfillset(&signals);
    // These report a fault of the thread itself, or are sent by a profiler.
    for (const int own : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGPROF, SIGSEGV, SIGSYS, SIGTRAP}) {
      sigdelset(&signals, own);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

// Stops the thread when the process exits. It is younger than the static objects of libcurl and of
// the TLS library, so the thread is told to stop before they are destroyed.
class BackgroundWorker::ExitGuard {
 public:
  explicit ExitGuard(BackgroundWorker& worker) : worker_(worker) {}
  ~ExitGuard() {
    // A forked child has no worker's thread. What the parent's threads held is locked there.
    if (getpid() == process_) worker_.Stop();
  }

  ExitGuard(const ExitGuard&) = delete;
  ExitGuard& operator=(const ExitGuard&) = delete;

 private:
  BackgroundWorker& worker_;
  const pid_t process_ = getpid();
};

bool BackgroundWorker::Submit(std::shared_ptr<BackgroundTransfer> transfer) {
  transfer->exchange().TellQueued();
  if (transfer->IsAbandoned()) return true;  // by the listener
  try {
    return Instance().Add(std::move(transfer));
  } catch (const std::system_error&) {
    throw std::bad_alloc();
  }
}

void BackgroundWorker::Withdraw(unsigned long number) {
  if (!worker_exists.load()) return;
  BackgroundWorker& worker = Instance();
  decltype(worker.waiting_)::node_type withdrawn;
  {
    const std::lock_guard<std::mutex> lock(worker.mutex_);
    withdrawn = worker.waiting_.extract(number);
  }
  if (withdrawn.empty()) NoteAbandoned();
}

void BackgroundWorker::NoteAbandoned() {
  if (!worker_exists.load()) return;
  BackgroundWorker& worker = Instance();
  if (worker.has_abandoned_.exchange(true)) return;
  const std::lock_guard<std::mutex> lock(worker.mutex_);
  if (worker.loop_) worker.loop_->Wake();
}

BackgroundWorker& BackgroundWorker::Instance() {
  static BackgroundWorker* const worker = [] {
    EnsureCurl();
    return new BackgroundWorker;
  }();
  static const ExitGuard guard(*worker);
  worker_exists = true;
  return *worker;
}

bool BackgroundWorker::Add(std::shared_ptr<BackgroundTransfer> transfer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (stopping_) return false;
  if (!thread_.joinable()) StartThread();
  std::function<void()> completion = [transfer] {
    // The host may destroy this function while it runs.
    const auto kept = transfer;  // NOLINT(performance-unnecessary-copy-initialization)
    kept->Deliver();
  };
  const unsigned long number = transfer->number();
  waiting_.emplace(number, Job{std::move(transfer), std::move(completion)});
  loop_->Wake();
  return true;
}

void BackgroundWorker::StartThread() {
  if (!loop_) loop_ = std::make_unique<TransferLoop>();
  active_.reserve(kMaxActive);
  PinThisLibrary();
  const SignalsBlocked blocked;
  thread_ = std::thread(&BackgroundWorker::Run, this);
}

void BackgroundWorker::Stop() {
  {
    // The host's functions may use objects that are already destroyed. Exit does not wait for a
    // call under way.
    const NoWaitScope no_wait;
    TransferSettings::Instance().listener().Replace(nullptr);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stopping_ = true;
    }
    TransferSettings::Instance().executor().Replace(nullptr);
  }
  std::unique_lock<std::mutex> lock(mutex_);
  if (!thread_.joinable()) return;
  if (loop_) loop_->Wake();
  // The worker itself may call exit from inside a delivery.
  const bool may_join = thread_.get_id() != std::this_thread::get_id() &&
                        thread_ended_.wait_for(lock, kExitWait, [this] { return ended_; });
  lock.unlock();
  if (may_join) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

void BackgroundWorker::Run() {
  const NoWaitScope no_wait;
  while (!stopping_) {
    if (has_abandoned_.exchange(false)) DropAbandoned();
    StartWaiting();
    loop_->Turn();
    CompleteEnded();
  }
  std::unique_ptr<TransferLoop> loop;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    loop = std::move(loop_);
  }
  loop.reset();  // tells the listener of what it drops
  active_.clear();
  const std::lock_guard<std::mutex> lock(mutex_);
  ended_ = true;
  thread_ended_.notify_all();
}

std::optional<BackgroundWorker::Job> BackgroundWorker::NextWaiting() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (waiting_.empty() || active_.size() >= kMaxActive) return std::nullopt;
  return std::move(waiting_.extract(waiting_.begin()).mapped());
}

void BackgroundWorker::StartWaiting() {
  while (std::optional<Job> job = NextWaiting()) {
    if (job->transfer->IsAbandoned()) {
      job->transfer->exchange().EndDropped();
      continue;
    }
    try {
      loop_->Start(job->transfer->exchange());
      active_.push_back(std::move(*job));
    } catch (const std::bad_alloc&) {
      job->transfer->exchange().EndFailed(kOutOfMemory);
      Complete(std::move(*job));
    }
  }
}

void BackgroundWorker::DropAbandoned() {
  for (std::size_t i = active_.size(); i > 0; --i) {
    if (!active_[i - 1].transfer->IsAbandoned()) continue;
    loop_->Drop(active_[i - 1].transfer->exchange());
    TakeActive(i - 1);
  }
}

void BackgroundWorker::CompleteEnded() {
  // Once exit has begun, no further observer is called.
  while (!stopping_) {
    const HttpExchange* const exchange = loop_->NextEnded();
    if (exchange == nullptr) break;
    const auto job = std::find_if(active_.begin(), active_.end(), [exchange](const Job& each) {
      return &each.transfer->exchange() == exchange;
    });
    Complete(TakeActive(static_cast<std::size_t>(job - active_.begin())));
  }
}

BackgroundWorker::Job BackgroundWorker::TakeActive(std::size_t index) {
  std::swap(active_[index], active_.back());
  Job job = std::move(active_.back());
  active_.pop_back();
  return job;
}

void BackgroundWorker::Complete(Job job) noexcept {
  try {
    while (const auto executor = TransferSettings::Instance().executor().Current()) {
      if (executor->Call(std::move(job.completion))) return;
    }
    // Exit begins before it takes the executor away.
    if (!stopping_) job.transfer->Deliver();
  } catch (...) {  // NOLINT(bugprone-empty-catch): an observer's failure must not end the thread
  }
}

}  // namespace ovrant::internet
