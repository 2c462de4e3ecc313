// Sending a notification among many observers, beside the least that can be done for it, and what
// it takes to come and go.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"

namespace stowra_bench {
namespace {

constexpr char kName[] = "StowraBenchDownloadReturned";
constexpr std::int64_t kObserversOfAName = 10;

class Counter final : public ovrant::IObserver {
 public:
  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* /*payload*/) override { ++count_; }
  std::int64_t count() const { return count_; }

 private:
  std::int64_t count_ = 0;
};

std::string NameOf(std::int64_t index) { return "StowraBenchNotification" + std::to_string(index); }

// A second thread of the process, asleep. A process with one thread takes its locks for nothing,
// which no host does.
class IdleThread {
 public:
  IdleThread() : thread_([this] { end_.get_future().wait(); }) {}
  ~IdleThread() {
    end_.set_value();
    thread_.join();
  }

  IdleThread(const IdleThread&) = delete;
  IdleThread& operator=(const IdleThread&) = delete;

 private:
  std::promise<void> end_;
  std::thread thread_;
};

// Observers of the one center of the process, ten of each name, for as long as this lives.
class Crowd {
 public:
  explicit Crowd(std::int64_t count) : observers_(static_cast<std::size_t>(count)) {
    for (std::int64_t i = 0; i < count; ++i) {
      center_.AddObserver(NameOf(i / kObserversOfAName).c_str(),
                          &observers_[static_cast<std::size_t>(i)]);
    }
  }
  ~Crowd() {
    for (Counter& observer : observers_) center_.RemoveObserver(&observer);
  }

  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

 private:
  CNotificationCenter& center_ = *CNotificationCenter::Default();
  std::vector<Counter> observers_;
};

void Send(benchmark::State& state) {
  CNotificationCenter& center = *CNotificationCenter::Default();
  const IdleThread second;
  const Crowd others(state.range());
  Counter counter;
  center.AddObserver(kName, &counter);
  const char* name = kName;
  benchmark::DoNotOptimize(name);
  for (auto _ : state) center.SendNotification(name, nullptr);
  center.RemoveObserver(&counter);
  if (counter.count() != state.iterations()) state.SkipWithError("not delivered");
}
BENCHMARK(Send)
    ->Name("SendNotification/stowra")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->UseRealTime();

// As many names, each with one observer, in the standard library's table. `Key` is what it holds
// of a name.
template <typename Key>
void FindAndCall(benchmark::State& state) {
  const IdleThread second;
  std::vector<std::string> names;
  for (std::int64_t i = 0; i < state.range() / kObserversOfAName; ++i) names.push_back(NameOf(i));
  std::vector<std::unique_ptr<Counter>> others;
  std::unordered_map<Key, ovrant::IObserver*> observers;
  for (const std::string& name : names) {
    observers.emplace(name, others.emplace_back(std::make_unique<Counter>()).get());
  }
  Counter counter;
  observers.emplace(kName, &counter);
  const char* name = kName;
  benchmark::DoNotOptimize(name);
  for (auto _ : state) {
    const auto found = observers.find(name);
    if (found != observers.end()) found->second->OnNotification(name, nullptr);
  }
  if (counter.count() != state.iterations()) state.SkipWithError("not delivered");
}
BENCHMARK(FindAndCall<std::string_view>)
    ->Name("SendNotification/table_of_views")
    ->Arg(10)
    ->Arg(10'000)
    ->UseRealTime();
BENCHMARK(FindAndCall<std::string>)
    ->Name("SendNotification/table_of_strings")
    ->Arg(10)
    ->Arg(10'000)
    ->UseRealTime();

// One observer comes and goes among others of the same name.
void ComeAndGo(benchmark::State& state) {
  CNotificationCenter& center = *CNotificationCenter::Default();
  std::vector<Counter> others(static_cast<std::size_t>(state.range()));
  for (Counter& observer : others) center.AddObserver(kName, &observer);
  Counter counter;
  for (auto _ : state) {
    center.AddObserver(kName, &counter);
    center.RemoveObserver(&counter);
  }
  center.SendNotification(kName, nullptr);
  for (Counter& observer : others) center.RemoveObserver(&observer);
  if (counter.count() != 0 || others.front().count() != 1) state.SkipWithError("not removed");
}
BENCHMARK(ComeAndGo)->Name("AddAndRemoveObserver/stowra")->Arg(1000)->Arg(10'000)->UseRealTime();

// All observers of one name come, and go in the order in which they came.
void ComeAndGoTogether(benchmark::State& state) {
  CNotificationCenter& center = *CNotificationCenter::Default();
  std::vector<Counter> observers(static_cast<std::size_t>(state.range()));
  for (auto _ : state) {
    for (Counter& observer : observers) center.AddObserver(kName, &observer);
    for (Counter& observer : observers) center.RemoveObserver(&observer);
  }
  center.SendNotification(kName, nullptr);
  if (observers.front().count() != 0) state.SkipWithError("not removed");
}
BENCHMARK(ComeAndGoTogether)->Name("AddAndRemoveAll/stowra")->Arg(1000)->Arg(10'000)->UseRealTime();

// One observer of many names comes and goes.
void ComeAndGoForManyNames(benchmark::State& state) {
  CNotificationCenter& center = *CNotificationCenter::Default();
  std::vector<std::string> names;
  for (std::int64_t i = 0; i < state.range(); ++i) names.push_back(NameOf(i));
  Counter counter;
  for (auto _ : state) {
    for (const std::string& name : names) center.AddObserver(name.c_str(), &counter);
    center.RemoveObserver(&counter);
  }
  for (const std::string& name : names) center.SendNotification(name.c_str(), nullptr);
  if (counter.count() != 0) state.SkipWithError("not removed");
}
BENCHMARK(ComeAndGoForManyNames)
    ->Name("AddForManyNames/stowra")
    ->Arg(1000)
    ->Arg(10'000)
    ->UseRealTime();

}  // namespace
}  // namespace stowra_bench
