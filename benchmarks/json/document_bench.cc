// SPDX-License-Identifier: MIT
// Measures loading a JSON text into a document.

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

#include "benchmarks/json/bare_rapidjson.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra_bench {
namespace {

using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

constexpr int kSmall = 2000;
constexpr unsigned kValueLength = 40;  // of each member of a flat object

ovrant_ustring UnitsOf(const std::string& text) { return ovrant_ustring(text.data(), text.size()); }

std::string TextOf(const benchmark::State& state) {
  return MakeExtensionStatus(static_cast<int>(state.range()));
}

std::string FlatTextOf(const benchmark::State& state) {
  return MakeFlatObject(static_cast<int>(state.range()));
}

void SetBytes(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void Load(benchmark::State& state, const std::string& text) {
  const ovrant_ustring units = UnitsOf(text);
  for (auto _ : state) {
    Document document;
    if (!document.Load(units)) state.SkipWithError("not loaded");
  }
  SetBytes(state, text);
}

void LoadBare(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    if (!ParseBareJson(text)) state.SkipWithError("not parsed");
  }
  SetBytes(state, text);
}

// Copies the text first, because each parse spoils it. That is one part in fifty of the time.
void LoadFastest(benchmark::State& state) {
  const std::string text = TextOf(state);
  for (auto _ : state) {
    std::string copy = text;
    if (!ParseJsonFastest(copy)) state.SkipWithError("not parsed");
  }
  SetBytes(state, text);
}

// Loads and reads every member. Loads each time, because a document keeps a handle for each member
// read.
bool LoadAndWalk(const ovrant_ustring& text, unsigned members, Document& document) {
  if (!document.Load(text)) return false;
  unsigned long length = 0;
  for (unsigned i = 0; i < document.MemberCount(); ++i) {
    benchmark::DoNotOptimize(document.MemberNameAt(i));
    length += document.MemberAt(i).GetString().length();
  }
  return length == kValueLength * members;
}

// Runs `load` on ten texts and keeps all documents. That is the work and memory of one text of ten
// times the size.
template <typename Text, typename Load>
void LoadTen(benchmark::State& state, const Text& text, const Load& load) {
  const std::vector<Text> texts(10, text);
  for (auto _ : state) {
    std::array<Document, 10> documents;
    auto document = documents.begin();
    for (const Text& each : texts) {
      if (!load(each, *document++)) state.SkipWithError("not loaded");
    }
  }
}

void DocumentLoad(benchmark::State& state) {
  const std::string text = TextOf(state);
  Document document;
  document.Load(UnitsOf(text));
  if (document["extensions"].Size() != static_cast<unsigned>(state.range())) {
    state.SkipWithError("not the whole document");
  }
  Load(state, text);
}

void DocumentLoadTen(benchmark::State& state) {
  LoadTen(state, UnitsOf(MakeExtensionStatus(kSmall)),
          [](const ovrant_ustring& text, Document& document) { return document.Load(text); });
}

void DocumentLoadBare(benchmark::State& state) { LoadBare(state, TextOf(state)); }

void BytesToDocument(benchmark::State& state) {
  const std::string body = TextOf(state);
  for (auto _ : state) {
    Document document;
    if (!document.Load(UnitsOf(body))) state.SkipWithError("not loaded");
  }
  SetBytes(state, body);
}

void BytesToDocumentTen(benchmark::State& state) {
  LoadTen(state, MakeExtensionStatus(kSmall),
          [](const std::string& body, Document& document) { return document.Load(UnitsOf(body)); });
}

void FlatLoad(benchmark::State& state) { Load(state, FlatTextOf(state)); }

void FlatLoadTen(benchmark::State& state) {
  LoadTen(state, UnitsOf(MakeFlatObject(kSmall)),
          [](const ovrant_ustring& text, Document& document) { return document.Load(text); });
}

void FlatLoadBare(benchmark::State& state) { LoadBare(state, FlatTextOf(state)); }

void FlatWalk(benchmark::State& state) {
  const std::string text = FlatTextOf(state);
  const ovrant_ustring units = UnitsOf(text);
  for (auto _ : state) {
    Document document;
    if (!LoadAndWalk(units, static_cast<unsigned>(state.range()), document)) {
      state.SkipWithError("not every member");
    }
  }
  SetBytes(state, text);
}

void FlatWalkTen(benchmark::State& state) {
  LoadTen(state, UnitsOf(MakeFlatObject(kSmall)),
          [](const ovrant_ustring& text, Document& document) {
            return LoadAndWalk(text, kSmall, document);
          });
}

BENCHMARK(DocumentLoad)
    ->Name("DocumentLoad/stowra")
    ->Arg(200)
    ->Arg(2000)
    ->Arg(20000)
    ->UseRealTime();
BENCHMARK(DocumentLoadTen)->Name("DocumentLoad/stowra/10x2000")->UseRealTime();
BENCHMARK(DocumentLoadBare)
    ->Name("DocumentLoad/rapidjson")
    ->Arg(200)
    ->Arg(2000)
    ->Arg(20000)
    ->UseRealTime();
BENCHMARK(LoadFastest)->Name("DocumentLoad/rapidjson_fastest")->Arg(200)->Arg(20000)->UseRealTime();
BENCHMARK(BytesToDocument)
    ->Name("BytesToDocument/stowra")
    ->Arg(200)
    ->Arg(2000)
    ->Arg(20000)
    ->UseRealTime();
BENCHMARK(BytesToDocumentTen)->Name("BytesToDocument/stowra/10x2000")->UseRealTime();
BENCHMARK(FlatLoad)->Name("FlatObjectLoad/stowra")->Arg(2000)->Arg(20000)->UseRealTime();
BENCHMARK(FlatLoadTen)->Name("FlatObjectLoad/stowra/10x2000")->UseRealTime();
BENCHMARK(FlatLoadBare)->Name("FlatObjectLoad/rapidjson")->Arg(2000)->Arg(20000)->UseRealTime();
BENCHMARK(FlatWalk)->Name("FlatObjectWalk/stowra")->Arg(2000)->Arg(20000)->UseRealTime();
BENCHMARK(FlatWalkTen)->Name("FlatObjectWalk/stowra/10x2000")->UseRealTime();

}  // namespace
}  // namespace stowra_bench
