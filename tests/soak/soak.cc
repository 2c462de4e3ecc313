// SPDX-License-Identifier: MIT
// Uses everything at once, at random. Usage: soak SECONDS [--seed NUMBER]
//
// The main thread delivers, and uses requests of all three kinds. Other threads use bare
// transports, make blocking calls, add and remove observers, and change executor, listener and
// defaults. Exits with 1 on a violation. More descriptors, or clearly more heap, than after the
// first short round are violations too.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/soak/answers.h"
#include "tests/soak/bare_transfers.h"
#include "tests/soak/blocking_calls.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/passing_observers.h"
#include "tests/soak/report.h"
#include "tests/soak/requests.h"
#include "tests/soak/settings.h"
#include "tests/support/event.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;
using ovrant::internet::InternetData;

constexpr int kBareThreads = 3;
constexpr int kBlockingThreads = 3;
constexpr int kObserverThreads = 2;

// Bytes by which the heap may grow after the first round, in the library, the allocator or a
// sanitizer.
constexpr std::size_t kMostGrowth = std::size_t{4} << 20;

// More than the connections that the library keeps.
constexpr int kFlushThreads = 12;

// How many kept transfers may still fail to post, because completions were dropped.
std::int64_t CountExcused() {
  return tally.completions_dropped.value() - tally.never_posted.value();
}

template <typename Part>
bool HaveStopped(const std::vector<std::unique_ptr<Part>>& parts) {
  return std::all_of(parts.begin(), parts.end(),
                     [](const auto& part) { return part->has_stopped(); });
}

class Soak {
 public:
  explicit Soak(std::uint32_t seed) : seed_(seed) {}

  // Ends with no transfer running. Every kept transfer must post, unless a completion is dropped.
  void RunRound(std::chrono::duration<double> length, bool drops_completions) {
    const RawServer server(Answer, {nullptr, true, 0, false});
    Random random(NextSeed());
    auto settings = std::make_unique<SettingsChanges>(loop_, NextSeed(), drops_completions);
    auto requests = std::make_unique<Requests>(server, loop_, NextSeed());
    std::vector<std::unique_ptr<BareTransfers>> bare;
    std::vector<std::unique_ptr<BlockingCalls>> blocking;
    std::vector<std::unique_ptr<PassingObservers>> observers;
    for (int i = 0; i < kBareThreads; ++i) {
      bare.push_back(std::make_unique<BareTransfers>(i, server, loop_, NextSeed()));
    }
    for (int i = 0; i < kBlockingThreads; ++i) {
      blocking.push_back(std::make_unique<BlockingCalls>(server, NextSeed()));
    }
    for (int i = 0; i < kObserverThreads; ++i) {
      observers.push_back(std::make_unique<PassingObservers>(i, loop_, NextSeed()));
    }

    const std::int64_t excused_before = CountExcused();
    const auto begin = Clock::now();
    while (Clock::now() - begin < length && !IsViolated()) {
      loop_.RunSome(random);
      requests->Act();
    }
    for (const auto& each : bare) each->Stop();
    for (const auto& each : blocking) each->Stop();
    while (!HaveStopped(bare) || !HaveStopped(blocking)) loop_.RunSome(random);
    observers.clear();
    blocking.clear();
    settings.reset();
    Settle(*requests, bare, excused_before, random);
    requests.reset();
    bare.clear();
    while (!loop_.IsEmpty()) loop_.RunSome(random);
    const auto end = Clock::now() + kPatience;
    while (AnswersUnderWay() > 0 && Clock::now() < end) loop_.RunSome(random);
    Check(AnswersUnderWay() == 0, "transfers are still running");
  }

  // Closes the kept connections, so that descriptors and heap can be compared.
  // libcurl closes dead kept connections when it makes a new one, but at most once a second.
  void Flush() {
    Random random(NextSeed());
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    std::atomic<int> waiting{0};
    const RawServer server([&waiting](const RawRequest&, RawConnection& connection) {
      ++waiting;
      const auto end = Clock::now() + kPatience;
      while (waiting < kFlushThreads + 1 && Clock::now() < end) std::this_thread::yield();
      connection.Write(Response(200, "flushed", "Connection: close\r\n"));
      connection.Close();
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < kFlushThreads; ++i) {
      threads.emplace_back([&server] {
        InternetData transport(server.Url().c_str());
        Check(transport.Download(), "a download failed");
      });
    }
    ovrant::internet::InternetDataDelegate delegate(nullptr, 1, "SoakFlushed", 2, "SoakFlushed");
    InternetData transport(server.Url().c_str());
    Check(transport.DownloadWithDelegate(&delegate, nullptr), "a transfer did not start");
    const auto end = Clock::now() + kPatience;
    const auto run_before = tally.completions_run.value();
    while (tally.completions_run.value() == run_before && Clock::now() < end) loop_.RunSome(random);
    Check(tally.completions_run.value() == run_before + 1, "a transfer did not end");
    for (std::thread& thread : threads) thread.join();
  }

 private:
  std::uint32_t NextSeed() { return seed_ = seed_ * 1'664'525 + 1'013'904'223; }

  // Runs until all kept transfers have posted, except one for each dropped completion.
  void Settle(Requests& requests, std::vector<std::unique_ptr<BareTransfers>>& bare,
              std::int64_t excused_before, Random& random) {
    const auto end = Clock::now() + kPatience;
    while (!IsViolated()) {
      loop_.RunSome(random);
      std::int64_t unposted = requests.CountUnposted();
      for (const auto& each : bare) unposted += each->CountUnposted();
      const std::int64_t excused = CountExcused() - excused_before;
      if (unposted <= excused) return;
      if (Clock::now() > end) {
        Violate(std::to_string(unposted) +
                " kept transfers never posted, but completions of only " + std::to_string(excused) +
                " were dropped");
      }
    }
  }

  std::uint32_t seed_;
  MainLoop loop_;
};

int Run(double seconds, std::uint32_t seed) {
  std::printf("soak: %g seconds, seed %u\n", seconds, seed);
  std::fflush(stdout);
  const auto begin = Clock::now();
  Soak soak(seed);
  const std::chrono::duration<double> whole(seconds);
  soak.RunRound(whole / 4, true);
  soak.Flush();
  const int descriptors_before = CountOpenDescriptors();
  const std::size_t heap_before = LiveHeapBytes();
  soak.RunRound(whole / 4, true);
  soak.RunRound(whole / 2, false);
  soak.Flush();
  const int descriptors = CountOpenDescriptors();
  const std::size_t heap = LiveHeapBytes();

  PrintSummary(std::chrono::duration<double>(Clock::now() - begin).count());
  std::printf("descriptors: %d, then %d\nlive heap: %zu kB, then %zu kB\n", descriptors_before,
              descriptors, heap_before / 1024, heap / 1024);
  if (descriptors > descriptors_before) Violate("descriptors are left open");
  if (heap > heap_before + kMostGrowth) Violate("the heap has grown");
  Check(tally.public_received.value() == tally.public_posted.value(),
        "public notifications posted and received differ in number");
  Check(tally.returned.value() > 0 && tally.returned.value() < tally.transfer_posts.value(),
        "either no transfer failed or all did");
  return IsViolated() ? 1 : 0;
}

}  // namespace
}  // namespace stowra_test

int main(int count, char** arguments) {
  const double seconds = count > 1 ? std::atof(arguments[1]) : 0;
  const bool has_seed = count == 4 && std::strcmp(arguments[2], "--seed") == 0;
  if (seconds <= 0 || (count != 2 && !has_seed)) {
    std::fprintf(stderr, "usage: %s SECONDS [--seed NUMBER]\n", arguments[0]);
    return 2;
  }
  const std::uint32_t seed =
      has_seed ? static_cast<std::uint32_t>(std::strtoul(arguments[3], nullptr, 10))
               : std::random_device()();
  return stowra_test::Run(seconds, seed);
}
