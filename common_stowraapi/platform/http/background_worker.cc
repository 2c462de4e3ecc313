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
#include "common_stowraapi/platform/notify/delivery_scope.h"

namespace ovrant::internet {

namespace {

// The code that the thread runs must stay in the process. Where the linker can say so (-z
// nodelete), it has.
void PinThisLibrary() {
#if defined(__APPLE__)
  Dl_info info;
  if (dladdr(reinterpret_cast<const void*>(&PinThisLibrary), &info) != 0) {
    dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
#endif
}

// How long the process's exit waits for a host function that the thread is in.
constexpr std::chrono::milliseconds kExitWait(500);

// For how long memory waits for the next transfer.
constexpr std::chrono::milliseconds kMemoryIsKept(1000);

// Set once there is a worker, so that nobody makes one in order to tell it of nothing.
std::atomic<bool> worker_exists{false};

// Whether this is the worker's thread, and it will look for what there is to do before it waits.
thread_local bool will_look = false;

}  // namespace

// Ends the thread when the process exits, before libcurl's and TLS's own static objects go: they
// are older.
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
    // What the host's functions use may be gone already. A call under way is not waited for.
    const DeliveryScope no_wait;
    TransferSettings::Instance().listener().Replace(nullptr);
    TransferSettings::Instance().executor().Replace(nullptr);
  }
  std::unique_lock<std::mutex> lock(mutex_);
  stopping_ = true;
  if (!thread_.joinable()) return;
  wake_.Wake();
  // The thread may itself be the one that exits, from inside a delivery.
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

// False when the thread is to end.
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
  // When the process ends while an observer is still running, it is the last one that is called.
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
