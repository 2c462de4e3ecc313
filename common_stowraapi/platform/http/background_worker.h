// SPDX-License-Identifier: MIT
// The thread that runs the background transfers.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_WORKER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_WORKER_H_

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/http/background_transfer.h"
#include "common_stowraapi/platform/http/transfer_loop.h"

namespace ovrant::internet {

// One for the process. The first Submit starts its thread. Process exit ends the thread without
// waiting for the network. Never destroyed, because static destructors of the host may still use
// it. A forked child has no worker's thread and starts none.
class BackgroundWorker {
 public:
  // Transfers that run at a time. The others wait in order, and their timeouts have not begun.
  static constexpr std::size_t kMaxActive = 100;

  // Queues `transfer`, which ends with a delivery unless it is abandoned. False when the process is
  // exiting. Throws std::bad_alloc when there is no memory or no thread, and queues nothing then.
  // Any thread.
  static bool Submit(std::shared_ptr<BackgroundTransfer> transfer);

  // Takes the abandoned transfer of that number out of the queue. If it runs, the worker drops it
  // soon. Any thread.
  static void Withdraw(unsigned long number);

  // Reports that transfers may have been abandoned. The worker drops those that run soon. One that
  // waits is dropped when its turn comes. Any thread.
  static void NoteAbandoned();

 private:
  class ExitGuard;

  // A transfer and its completion. The completion is made at the start, so an end needs no memory.
  struct Job {
    std::shared_ptr<BackgroundTransfer> transfer;
    std::function<void()> completion;
  };

  BackgroundWorker() = default;

  static BackgroundWorker& Instance();

  bool Add(std::shared_ptr<BackgroundTransfer> transfer);
  void StartThread();
  void Stop();

  void Run();
  std::optional<Job> NextWaiting();
  void StartWaiting();
  void DropAbandoned();
  void CompleteEnded();
  Job TakeActive(std::size_t index);
  void Complete(Job job) noexcept;

  std::mutex mutex_;
  std::condition_variable thread_ended_;
  std::map<unsigned long, Job> waiting_;  // by the number of the transfer
  std::atomic<bool> stopping_{false};     // set under the lock
  bool ended_ = false;
  std::thread thread_;
  std::unique_ptr<TransferLoop> loop_;

  std::atomic<bool> has_abandoned_{false};

  std::vector<Job> active_;  // for the worker's thread only
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BACKGROUND_WORKER_H_
