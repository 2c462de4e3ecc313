// From the bytes of a feed to its items.

#include <benchmark/benchmark.h>

#include <string>

#include "benchmarks/content/bare_expat.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/content_query.h"

namespace stowra_bench {
namespace {

using ovrant::stowraapiclient::ContentQuery;

constexpr int kNewestVersion = 8;

bool Load(std::string& feed, ContentQuery& query) {
  query.max_qmf_version_ = kNewestVersion;
  return query.Load(reinterpret_cast<unsigned char*>(feed.data()), static_cast<int>(feed.size()));
}

void LoadFeed(benchmark::State& state, std::string feed, std::size_t items) {
  for (auto _ : state) {
    ContentQuery query;
    if (!Load(feed, query) || query.items_.size() != items) state.SkipWithError("not loaded");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(feed.size()));
}

void ContentQueryLoad(benchmark::State& state) {
  const auto entries = static_cast<int>(state.range());
  LoadFeed(state, MakeFeed(entries), static_cast<std::size_t>(entries));
}
BENCHMARK(ContentQueryLoad)
    ->Name("ContentQueryLoad/stowra")
    ->Arg(12)
    ->Arg(2000)
    ->Arg(20000)
    ->UseRealTime();

void BareExpat(benchmark::State& state) {
  const std::string feed = MakeFeed(static_cast<int>(state.range()));
  for (auto _ : state) {
    if (!ParseBare(feed)) state.SkipWithError("not parsed");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(feed.size()));
}
BENCHMARK(BareExpat)->Name("ContentQueryLoad/expat")->Arg(12)->Arg(2000)->Arg(20000)->UseRealTime();

void LinksLoad(benchmark::State& state) {
  LoadFeed(state, MakeFeedOfLinks(static_cast<int>(state.range())), 1);
}
BENCHMARK(LinksLoad)->Name("LinksLoad/stowra")->Arg(2000)->Arg(20000)->UseRealTime();

}  // namespace
}  // namespace stowra_bench
