#include "common_stowraapi/platform/http/background_worker.h"

#if defined(__APPLE__)
#include <dlfcn.h>
#endif

#include <algorithm>
#include <chrono>
#include <new>
#include <system_error>
#include <utility>

#include "common_stowraapi/platform/http/body_memory.h"
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

// How long freed body memory is kept for the next transfer.
constexpr std::chrono::milliseconds kMemoryIsKept(1000);

// True from the moment the worker exists. Avoids creating the worker only to wake it.
std::atomic<bool> worker_exists{false};

// True on the worker's thread while it is certain to look for work before it waits.
thread_local bool will_look = false;

}  // namespace

// Stops the thread when the process exits. It is younger than the static objects of libcurl and of
// the TLS library, so the thread is told to stop before they are destroyed.
class BackgroundWorker::ExitGuard {
 public:
  explicit ExitGuard(BackgroundWorker& worker) : worker_(worker) {}
  ~ExitGuard() { worker_.Stop(); }

  ExitGuard(const ExitGuard&) = delete;
  ExitGuard& operator=(const ExitGuard&) = delete;

 private:
  BackgroundWorker& worker_;
};

bool BackgroundWorker::Submit(std::shared_ptr<BackgroundTransfer> transfer) {
  try {
    return Instance().Add(std::move(transfer));
  } catch (const std::system_error&) {
    throw std::bad_alloc();
  }
}

void BackgroundWorker::NoteAbandoned() {
  if (!worker_exists.load()) return;
  BackgroundWorker& worker = Instance();
  if (!worker.has_abandoned_.exchange(true)) worker.Wake();
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
  if (!thread_.joinable()) {
    if (!loop_) loop_ = std::make_unique<TransferLoop>(&wake_);
    active_.reserve(kMaxActive);
    PinThisLibrary();
    thread_ = std::thread(&BackgroundWorker::Run, this);
  }
  std::function<void()> completion = [transfer] { transfer->Deliver(); };
  submitted_.push_back({std::move(transfer), std::move(completion)});
  if (submitted_.size() == 1) Wake();
  return true;
}

void BackgroundWorker::Stop() {
  {
    // The host's functions may use objects that are already destroyed. Exit does not wait for a
    // call under way.
    const NoWaitScope no_wait;
    TransferSettings::Instance().listener().Replace(nullptr);
    TransferSettings::Instance().executor().Replace(nullptr);
  }
  std::unique_lock<std::mutex> lock(mutex_);
  stopping_ = true;
  if (!thread_.joinable()) return;
  wake_.Wake();
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

void BackgroundWorker::Wake() {
  if (!will_look) wake_.Wake();
}

void BackgroundWorker::Run() {
  const NoWaitScope no_wait;
  while (TakeSubmitted()) {
    if (has_abandoned_.exchange(false)) DropAbandoned();
    StartWaiting();
    WaitForEvents();
    CompleteEnded();
  }
  BodyMemory::KeepFreed(false);
  loop_.reset();
  active_.clear();
  const std::lock_guard<std::mutex> lock(mutex_);
  ended_ = true;
  thread_ended_.notify_all();
}

void BackgroundWorker::WaitForEvents() {
  if (!active_.empty() && !keeps_memory_) {
    keeps_memory_ = true;
    BodyMemory::KeepFreed(true);
  }
  const bool may_give_memory_back = active_.empty() && keeps_memory_;
  if (!loop_->Turn(may_give_memory_back ? kMemoryIsKept : TransferLoop::kForever) &&
      may_give_memory_back) {
    keeps_memory_ = false;
    BodyMemory::KeepFreed(false);
  }
}

// Takes over what has been submitted. False when the thread must end.
bool BackgroundWorker::TakeSubmitted() {
  const std::lock_guard<std::mutex> lock(mutex_);
  waiting_.splice(waiting_.end(), submitted_);
  return !stopping_;
}

void BackgroundWorker::StartWaiting() {
  while (!waiting_.empty() && active_.size() < kMaxActive) {
    Job job = std::move(waiting_.front());
    waiting_.pop_front();
    if (job.transfer->IsAbandoned()) continue;
    try {
      loop_->Start(job.transfer->exchange());
      active_.push_back(std::move(job));
    } catch (const std::bad_alloc&) {
      job.transfer->exchange().EndFailed("out of memory");
      Complete(std::move(job));
    }
  }
}

void BackgroundWorker::DropAbandoned() {
  waiting_.remove_if([](const Job& each) { return each.transfer->IsAbandoned(); });
  for (std::size_t i = active_.size(); i > 0; --i) {
    if (!active_[i - 1].transfer->IsAbandoned()) continue;
    loop_->Drop(active_[i - 1].transfer->exchange());
    TakeActive(i - 1);
  }
}

void BackgroundWorker::CompleteEnded() {
  will_look = true;
  // Once exit has begun, no further observer is called.
  while (!stopping_) {
    const HttpExchange* const exchange = loop_->NextEnded();
    if (exchange == nullptr) break;
    const auto job = std::find_if(active_.begin(), active_.end(), [exchange](const Job& each) {
      return &each.transfer->exchange() == exchange;
    });
    Complete(TakeActive(static_cast<std::size_t>(job - active_.begin())));
  }
  will_look = false;
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
    job.transfer->Deliver();
  } catch (...) {  // NOLINT(bugprone-empty-catch): an observer's failure must not end the thread
  }
}

}  // namespace ovrant::internet
