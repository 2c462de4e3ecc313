// SPDX-License-Identifier: MIT
// Sends a notification among many observers, compared with a bare hash table. Adds and removes
// observers.

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

// A sleeping second thread. Locks are cheaper in a process with one thread, and no host has only
// one.
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

// Registers `count` observers for its lifetime, ten for each name.
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

// Sends in turn to as many names as a large host has, each with one observer.
void SendManyNames(benchmark::State& state) {
  CNotificationCenter& center = *CNotificationCenter::Default();
  const IdleThread second;
  std::vector<std::string> names;
  std::vector<Counter> observers(static_cast<std::size_t>(state.range()));
  for (Counter& observer : observers) {
    names.push_back(NameOf(static_cast<std::int64_t>(names.size())));
    center.AddObserver(names.back().c_str(), &observer);
  }
  std::size_t next = 0;
  for (auto _ : state) {
    center.SendNotification(names[next].c_str(), nullptr);
    if (++next == names.size()) next = 0;
  }
  std::int64_t count = 0;
  for (Counter& observer : observers) {
    center.RemoveObserver(&observer);
    count += observer.count();
  }
  if (count != state.iterations()) state.SkipWithError("not delivered");
}
BENCHMARK(SendManyNames)->Name("SendManyNames/stowra")->Arg(256)->UseRealTime();

// The same number of names in the standard library's hash table, each with one observer.
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

// The same names in turn, in the standard library's hash table.
void FindAndCallManyNames(benchmark::State& state) {
  const IdleThread second;
  std::vector<std::string> names;
  for (std::int64_t i = 0; i < state.range(); ++i) names.push_back(NameOf(i));
  std::vector<Counter> counters(names.size());
  std::unordered_map<std::string_view, ovrant::IObserver*> observers;
  for (std::size_t i = 0; i < names.size(); ++i) observers.emplace(names[i], &counters[i]);
  std::size_t next = 0;
  for (auto _ : state) {
    const char* const name = names[next].c_str();
    const auto found = observers.find(name);
    if (found != observers.end()) found->second->OnNotification(name, nullptr);
    if (++next == names.size()) next = 0;
  }
  std::int64_t count = 0;
  for (const Counter& counter : counters) count += counter.count();
  if (count != state.iterations()) state.SkipWithError("not delivered");
}
BENCHMARK(FindAndCallManyNames)->Name("SendManyNames/table_of_views")->Arg(256)->UseRealTime();

// Adds and removes one observer among others of the same name.
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

// Adds all observers of one name, then removes them in the same order.
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

// Adds one observer for many names, then removes it.
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
