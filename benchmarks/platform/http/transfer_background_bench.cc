// SPDX-License-Identifier: MIT
// Background downloads, one at a time and 64 at a time.

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "benchmarks/platform/http/bare_curl.h"
#include "benchmarks/platform/http/transfer_files.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"

namespace stowra_bench {
namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;

constexpr int kStatusOk = 200;
constexpr std::size_t kOutstanding = 64;
constexpr char kReturned[] = "bench.returned";
constexpr char kFailed[] = "bench.failed";

// Runs several downloads at a time. The notification of one starts the next. Each has its own
// transport and delegate, as a request of the library has.
class Downloads : public ovrant::IObserver {
 public:
  Downloads(ovrant_ustring url, std::size_t size) : url_(std::move(url)), size_(size) {
    CNotificationCenter::Default()->AddObserver(kReturned, this);
    CNotificationCenter::Default()->AddObserver(kFailed, this);
  }
  ~Downloads() override { CNotificationCenter::Default()->RemoveObserver(this); }

  Downloads(const Downloads&) = delete;
  Downloads& operator=(const Downloads&) = delete;

  // Makes `count` downloads, `at_a_time` of them at once. False if one failed.
  bool Run(std::size_t count, std::size_t at_a_time) {
    std::unique_lock<std::mutex> lock(mutex_);
    to_start_ = count;
    to_end_ = count;
    slots_.resize(at_a_time);
    for (Slot& slot : slots_) Start(slot);
    all_ended_.wait(lock, [this] { return to_end_ == 0; });
    return good_;
  }

  void OnNotification(const char* name, void* context) override {
    Slot& slot = *static_cast<Slot*>(context);
    const std::lock_guard<std::mutex> lock(mutex_);
    good_ = good_ && std::strcmp(name, kReturned) == 0 &&
            slot.transport->status_code() == kStatusOk &&
            slot.transport->received_data_length() == size_;
    if (--to_end_ == 0) all_ended_.notify_one();
    Start(slot);
  }

 private:
  struct Slot {
    std::unique_ptr<InternetDataDelegate> delegate;
    std::unique_ptr<InternetData> transport;
  };

  void Start(Slot& slot) {
    if (to_start_ == 0) return;
    --to_start_;
    slot.delegate = std::make_unique<InternetDataDelegate>(&slot, 1, kReturned, 2, kFailed);
    slot.transport = std::make_unique<InternetData>(url_);
    if (!slot.transport->DownloadWithDelegate(slot.delegate.get(), nullptr)) good_ = false;
  }

  const ovrant_ustring url_;
  const std::size_t size_;
  std::mutex mutex_;
  std::condition_variable all_ended_;
  std::vector<Slot> slots_;
  std::size_t to_start_ = 0;
  std::size_t to_end_ = 0;
  bool good_ = true;
};

// The number of transfers in one batch. The reported time is that of one transfer.
std::size_t BatchOf(std::size_t size) { return size == kSmallBody ? 1024 : 256; }

void StowraInBatches(benchmark::State& state, std::size_t at_a_time) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::size_t batch = BatchOf(size);
  Downloads downloads(ovrant_ustring(UrlOfFile(size).c_str()), size);
  bool good = downloads.Run(at_a_time, at_a_time);
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(batch))) {
    good = downloads.Run(batch, at_a_time) && good;
  }
  if (!good) state.SkipWithError("a download failed");
}

void StowraChained(benchmark::State& state) { StowraInBatches(state, 1); }
void StowraOutstanding(benchmark::State& state) { StowraInBatches(state, kOutstanding); }

// The main thread starts each transfer and waits for it.
void StowraAwaited(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  Downloads downloads(ovrant_ustring(UrlOfFile(size).c_str()), size);
  bool good = downloads.Run(1, 1);
  for (auto _ : state) good = downloads.Run(1, 1) && good;
  if (!good) state.SkipWithError("a download failed");
}

void Easy(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  BareEasy easy(UrlOfFile(size));
  std::string body;
  bool good = easy.Download(body);
  for (auto _ : state) good = easy.Download(body) && body.size() == size && good;
  if (!good) state.SkipWithError("a download failed");
}

void Multi(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::size_t batch = BatchOf(size);
  BareMulti multi(UrlOfFile(size), kOutstanding);
  bool good = multi.Download(kOutstanding, size);
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(batch))) {
    good = multi.Download(batch, size) && good;
  }
  if (!good) state.SkipWithError("a download failed");
}

void SetUp(const char* name, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, function)->Arg(kSmallBody)->Arg(kMediumBody)->UseRealTime();
}

[[maybe_unused]] const bool kRegistered = [] {
  SetUp("BackgroundChained/stowra", StowraChained);
  SetUp("BackgroundAwaited/stowra", StowraAwaited);
  SetUp("Background/libcurl", Easy);
  SetUp("Background64/stowra", StowraOutstanding);
  SetUp("Background64/libcurl", Multi);
  return true;
}();

}  // namespace
}  // namespace stowra_bench
