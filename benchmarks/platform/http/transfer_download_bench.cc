// SPDX-License-Identifier: MIT
// Downloads on the calling thread over an open connection. One transport or one easy handle makes
// them all.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "benchmarks/platform/http/bare_curl.h"
#include "benchmarks/platform/http/transfer_files.h"
#include "common_stowraapi/platform/internet_data.h"

namespace stowra_bench {
namespace {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;

constexpr int kStatusOk = 200;

bool Downloads(std::size_t size, InternetData& transport) {
  return transport.Download() && transport.status_code() == kStatusOk &&
         transport.received_data_length() == size;
}

void Stowra(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  InternetData transport(ovrant_ustring(UrlOfFile(size).c_str()));
  bool good = Downloads(size, transport);
  for (auto _ : state) good = Downloads(size, transport) && good;
  if (!good) state.SkipWithError("a download failed");
}

void Libcurl(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  BareEasy easy(UrlOfFile(size));
  std::string body;
  bool good = easy.Download(body);
  for (auto _ : state) good = easy.Download(body) && body.size() == size && good;
  if (!good) state.SkipWithError("a download failed");
}

BENCHMARK(Stowra)
    ->Name("Download/stowra")
    ->Arg(kSmallBody)
    ->Arg(kMediumBody)
    ->Arg(kLargeBody)
    ->UseRealTime();
BENCHMARK(Libcurl)->Name("Download/libcurl")->Arg(kSmallBody)->Arg(kMediumBody)->UseRealTime();

}  // namespace
}  // namespace stowra_bench
