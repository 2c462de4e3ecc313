// SPDX-License-Identifier: MIT
// Measures reading the extension store's answer into a map of items.

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <array>
#include <list>
#include <map>
#include <string>

#include "benchmarks/services/direct_item_map.h"
#include "benchmarks/services/peer_item_maps.h"
#include "benchmarks/services/received_status.h"
#include "benchmarks/support/inputs.h"

namespace stowra_bench {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::utils::ovrant_ustring;

using ItemMap = std::map<ovrant_ustring, ExtensionStoreItem>;

constexpr int kSizes[] = {200, 2000, 20000};

ItemMap ReadItems(ReceivedStatus& received) {
  received.status().OnReceivedStatusResponse(200);
  return received.status().GetItemMapFromResponse();
}

// An item as a text, to compare the readers' results.
std::string Summary(const std::string& id, const std::string& uuid, const std::string& url,
                    double version, bool update, bool remote_kill, bool enabled) {
  return id + ' ' + uuid + ' ' + url + ' ' + std::to_string(version) + (update ? " update" : "") +
         (remote_kill ? " kill" : "") + (enabled ? " enabled\n" : "\n");
}

std::string Summary(const ItemMap& items) {
  std::string summary;
  for (const auto& [id, item] : items) {
    summary += Summary(id.utf8(), item.version_uuid.utf8(), item.file_url.utf8(), item.version,
                       item.update, item.remote_kill, item.enabled);
  }
  return summary;
}

std::string Summary(const QMap<QString, QtItem>& items) {
  std::string summary;
  for (auto at = items.begin(); at != items.end(); ++at) {
    const QtItem& item = at.value();
    summary += Summary(at.key().toStdString(), item.version_uuid.toStdString(),
                       item.file_url.toStdString(), item.version, item.update, item.remote_kill,
                       item.enabled);
  }
  return summary;
}

std::string Summary(const std::map<std::string, StandardItem>& items) {
  std::string summary;
  for (const auto& [id, item] : items) {
    summary += Summary(id, item.version_uuid, item.file_url, item.version, item.update,
                       item.remote_kill, item.enabled);
  }
  return summary;
}

// Measures `read`, which must find the same items as the library.
template <typename Read>
void Measure(benchmark::State& state, const std::string& body, const Read& read) {
  ReceivedStatus received(body);
  const ItemMap expected = ReadItems(received);
  if (expected.size() != static_cast<std::size_t>(state.range()) ||
      Summary(read()) != Summary(expected)) {
    state.SkipWithError("not the same items");
  }
  for (auto _ : state) benchmark::DoNotOptimize(read());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(body.size()));
}

void Stowra(benchmark::State& state) {
  const std::string body = MakeExtensionStatus(static_cast<int>(state.range()));
  ReceivedStatus received(body);
  Measure(state, body, [&] { return ReadItems(received); });
}

// Reads ten answers and keeps all maps. Together they have as many items as the one large answer.
void TenAnswers(benchmark::State& state) {
  constexpr std::size_t kCount = 2000;
  const std::string body = MakeExtensionStatus(kCount);
  std::list<ReceivedStatus> received;
  for (int i = 0; i < 10; ++i) received.emplace_back(body);
  for (auto _ : state) {
    std::array<ItemMap, 10> maps;
    auto map = maps.begin();
    for (ReceivedStatus& answer : received) *map++ = ReadItems(answer);
    if (maps.back().size() != kCount) state.SkipWithError("not all items");
  }
}

void Direct(benchmark::State& state) {
  const std::string body = MakeExtensionStatus(static_cast<int>(state.range()));
  Measure(state, body, [&] { return DirectItemMap(body); });
}

void Qt(benchmark::State& state) {
  const std::string body = MakeExtensionStatus(static_cast<int>(state.range()));
  const QByteArray bytes = QByteArray::fromStdString(body);
  Measure(state, body, [&] { return QtItemMap(bytes); });
}

void Nlohmann(benchmark::State& state) {
  const std::string body = MakeExtensionStatus(static_cast<int>(state.range()));
  Measure(state, body, [&] { return NlohmannItemMap(body); });
}

void ForSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int size : kSizes) benchmark->Arg(size);
  benchmark->UseRealTime();
}

BENCHMARK(Stowra)->Name("ItemMap/stowra")->Apply(ForSizes);
BENCHMARK(TenAnswers)->Name("ItemMap/stowra/10x2000")->UseRealTime();
BENCHMARK(Direct)->Name("ItemMap/rapidjson")->Apply(ForSizes);
BENCHMARK(Qt)->Name("ItemMap/qt")->Apply(ForSizes);
BENCHMARK(Nlohmann)->Name("ItemMap/nlohmann")->Apply(ForSizes);

}  // namespace
}  // namespace stowra_bench
