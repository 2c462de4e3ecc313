// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/synchronous_transfers.h"

#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/http/exchange.h"
#include "common_stowraapi/platform/http/transfer_loop.h"
#include "common_stowraapi/platform/http/transfer_settings.h"

namespace ovrant::internet {

namespace {

// Idle loops, each with its connections. The one used last is taken first, because its connections
// are the freshest.
class LoopPool {
 public:
  // Never destroyed, so static destructors can use it.
  static LoopPool& Instance() {
    static auto* const pool = new LoopPool;
    return *pool;
  }

  std::unique_ptr<TransferLoop> Take() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!idle_.empty()) {
        std::unique_ptr<TransferLoop> loop = std::move(idle_.back());
        idle_.pop_back();
        return loop;
      }
    }
    return std::make_unique<TransferLoop>();
  }

  void GiveBack(std::unique_ptr<TransferLoop> loop) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (idle_.size() < kMaxIdle) idle_.push_back(std::move(loop));
  }

 private:
  static constexpr std::size_t kMaxIdle = 8;

  LoopPool() { idle_.reserve(kMaxIdle); }

  std::mutex mutex_;
  std::vector<std::unique_ptr<TransferLoop>> idle_;
};

}  // namespace

HttpReply PerformSynchronously(HttpRequest&& request) {
  try {
    // The loop may use the exchange until it is destroyed.
    HttpExchange exchange(std::move(request), TransferSettings::Instance().listener().Current());
    std::unique_ptr<TransferLoop> loop = LoopPool::Instance().Take();
    loop->Start(exchange);
    while (loop->NextEnded() == nullptr) loop->Turn();
    LoopPool::Instance().GiveBack(std::move(loop));
    return exchange.TakeReply();
  } catch (const std::bad_alloc&) {
    HttpReply reply;
    reply.error = TransferError::kOutOfMemory;
    return reply;
  }
}

}  // namespace ovrant::internet
