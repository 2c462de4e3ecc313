// SPDX-License-Identifier: MIT
// Measures reading the bytes of a feed into items.

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "benchmarks/content/bare_expat.h"
#include "benchmarks/content/libxml2_feed.h"
#include "benchmarks/content/poco_feed.h"
#include "benchmarks/content/qt_feed.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/content_query.h"

namespace stowra_bench {
namespace {

using ovrant::stowraapiclient::ContentQuery;

constexpr int kNewestVersion = 8;

// Measures `load`, which returns the number of items.
template <typename Load>
void Measure(benchmark::State& state, std::string document, std::size_t items, const Load& load) {
  for (auto _ : state) {
    if (load(document) != items) state.SkipWithError("the feed was not read");
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * document.size()));
}

std::size_t Load(std::string& document) {
  ContentQuery query;
  query.max_qmf_version_ = kNewestVersion;
  const bool loaded = query.Load(reinterpret_cast<unsigned char*>(document.data()),
                                 static_cast<int>(document.size()));
  return loaded ? query.items_.size() : 0;
}

// Calls another library's reader. The readers differ only in the record that they fill.
template <typename FeedRecord, bool (*Read)(std::string_view, int, FeedRecord&)>
std::size_t LoadWithPeer(const std::string& document) {
  FeedRecord feed;
  return Read(document, kNewestVersion, feed) ? feed.items.size() : 0;
}

template <typename Load>
void RegisterFeed(const char* name, const Load& load) {
  const auto measure = [load](benchmark::State& state) {
    const auto entries = static_cast<int>(state.range());
    Measure(state, MakeFeed(entries), static_cast<std::size_t>(entries), load);
  };
  benchmark::RegisterBenchmark(name, measure)->Arg(12)->Arg(200)->Arg(2000)->UseRealTime();
}

// The parser alone counts no items, so success returns the expected number.
std::size_t ParseOnly(const std::string& document, std::size_t items) {
  return ParseBare(document) ? items : 0;
}

const bool kRegistered = [] {
  RegisterFeed("ContentQueryLoad/stowra", Load);
  const auto bare = [](benchmark::State& state) {
    const auto entries = static_cast<std::size_t>(state.range());
    Measure(state, MakeFeed(static_cast<int>(entries)), entries,
            [entries](const std::string& document) { return ParseOnly(document, entries); });
  };
  benchmark::RegisterBenchmark("ContentQueryLoad/expat", bare)
      ->Arg(12)
      ->Arg(200)
      ->Arg(2000)
      ->UseRealTime();
  RegisterFeed("ContentQueryLoad/qt", LoadWithPeer<QtFeed, LoadWithQt>);
  RegisterFeed("ContentQueryLoad/poco", LoadWithPeer<StdFeed, LoadWithPoco>);
  RegisterFeed("ContentQueryLoad/poco_tree", LoadWithPeer<StdFeed, LoadWithPocoTree>);
  RegisterFeed("ContentQueryLoad/libxml2", LoadWithPeer<StdFeed, LoadWithLibxml2>);
  RegisterFeed("ContentQueryLoad/libxml2_tree", LoadWithPeer<StdFeed, LoadWithLibxml2Tree>);

  const auto links = [](benchmark::State& state) {
    Measure(state, MakeFeedOfLinks(static_cast<int>(state.range())), 1, Load);
  };
  benchmark::RegisterBenchmark("LinksLoad/stowra", links)->Arg(2000)->Arg(20000)->UseRealTime();
  return true;
}();

}  // namespace
}  // namespace stowra_bench
