// SPDX-License-Identifier: MIT
// Measures reading the bytes of a feed into items.

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/content/bare_expat.h"
#include "benchmarks/content/feed_fields.h"
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

// What the library reads from the document, field by field.
FeedFields OwnFields(std::string document) {
  ContentQuery query;
  query.max_qmf_version_ = kNewestVersion;
  query.Load(reinterpret_cast<unsigned char*>(document.data()), static_cast<int>(document.size()));
  return FieldsOf(query);
}

template <typename Measure>
void RegisterSizes(const char* name, const Measure& measure) {
  benchmark::RegisterBenchmark(name, measure)
      ->Arg(12)
      ->Arg(100)
      ->Arg(200)
      ->Arg(2000)
      ->UseRealTime();
}

// Measures another library's reader. The readers differ only in the record that they fill.
template <typename FeedRecord>
void RegisterPeer(const char* name, bool (*read)(std::string_view, int, FeedRecord&)) {
  RegisterSizes(name, [read](benchmark::State& state) {
    const auto entries = static_cast<int>(state.range());
    const std::string document = MakeFeed(entries);
    FeedRecord whole;
    if (!read(document, kNewestVersion, whole) || FieldsOf(whole) != OwnFields(document)) {
      state.SkipWithError("the peer reads other fields");
      return;
    }
    Measure(state, document, static_cast<std::size_t>(entries), [read](const std::string& bytes) {
      FeedRecord feed;
      return read(bytes, kNewestVersion, feed) ? feed.items.size() : 0;
    });
  });
}

// The parser alone counts no items, so success returns the expected number.
std::size_t ParseOnly(const std::string& document, std::size_t items) {
  return ParseBare(document) ? items : 0;
}

const bool kRegistered = [] {
  RegisterSizes("ContentQueryLoad/stowra", [](benchmark::State& state) {
    const auto entries = static_cast<int>(state.range());
    Measure(state, MakeFeed(entries), static_cast<std::size_t>(entries), Load);
  });
  RegisterSizes("ContentQueryLoad/expat", [](benchmark::State& state) {
    const auto entries = static_cast<std::size_t>(state.range());
    Measure(state, MakeFeed(static_cast<int>(entries)), entries,
            [entries](const std::string& document) { return ParseOnly(document, entries); });
  });
  RegisterPeer<QtFeed>("ContentQueryLoad/qt", LoadWithQt);
  RegisterPeer<StdFeed>("ContentQueryLoad/poco", LoadWithPoco);
  RegisterPeer<StdFeed>("ContentQueryLoad/poco_tree", LoadWithPocoTree);
  RegisterPeer<StdFeed>("ContentQueryLoad/libxml2", LoadWithLibxml2);
  RegisterPeer<StdFeed>("ContentQueryLoad/libxml2_tree", LoadWithLibxml2Tree);

  const auto links = [](benchmark::State& state) {
    Measure(state, MakeFeedOfLinks(static_cast<int>(state.range())), 1, Load);
  };
  benchmark::RegisterBenchmark("LinksLoad/stowra", links)->Arg(2000)->Arg(20000)->UseRealTime();
  return true;
}();

}  // namespace
}  // namespace stowra_bench
