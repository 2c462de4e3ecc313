// SPDX-License-Identifier: MIT
// An update query from the request to the results, compared with the transfer alone.

#include <benchmark/benchmark.h>

#include <string>

#include "benchmarks/platform/http/bare_curl.h"
#include "benchmarks/support/inputs.h"
#include "benchmarks/support/nginx.h"
#include "common_stowraapi/services/update_query.h"

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;

constexpr char kName[] = "update.json";

void Stowra(benchmark::State& state) {
  const ovrant_ustring url(Nginx::OfThisProgram().AddFile(kName, MakeUpdateResponse()).c_str());
  bool good = true;
  for (auto _ : state) {
    UpdateQuery query;
    query.Init(url, nullptr);
    good = query.SynchronousRequest() && query.data_files_.size() == 12 && good;
  }
  if (!good) state.SkipWithError("a query failed");
}

void Libcurl(benchmark::State& state) {
  const std::string response = MakeUpdateResponse();
  BareEasy easy(Nginx::OfThisProgram().AddFile(kName, response));
  std::string body;
  bool good = true;
  for (auto _ : state) good = easy.Download(body) && body.size() == response.size() && good;
  if (!good) state.SkipWithError("a download failed");
}

BENCHMARK(Stowra)->Name("UpdateQueryRequest/stowra")->Arg(2000)->UseRealTime();
BENCHMARK(Libcurl)->Name("UpdateQueryRequest/libcurl")->Arg(2000)->UseRealTime();

}  // namespace
}  // namespace stowra_bench
