// SPDX-License-Identifier: MIT
// Measures parsing an answer into the results of a query.

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

#include "benchmarks/services/direct_update.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

// Uses one query for all rounds. Each answer replaces the results of the one before.
void UpdateFromBytes(benchmark::State& state) {
  const std::string body = MakeUpdateResponse();
  UpdateQuery query;
  for (auto _ : state) {
    if (!query.ParseResponse(ovrant_ustring(body.data(), body.size()))) {
      state.SkipWithError("not parsed");
    }
  }
  if (query.data_files_.size() != 12 || query.message_.title != "Bonjour \u2014 καλημέρα") {
    state.SkipWithError("not the whole answer");
  }
}
BENCHMARK(UpdateFromBytes)->Name("UpdateQuery/stowra/2k")->UseRealTime();

void DirectUpdateFromBytes(benchmark::State& state) {
  const std::string body = MakeUpdateResponse();
  for (auto _ : state) {
    UpdateResults results;
    if (!DirectUpdate(body, results) || results.data_files.size() != 12) {
      state.SkipWithError("not parsed");
    }
  }
}
BENCHMARK(DirectUpdateFromBytes)->Name("UpdateQuery/rapidjson/2k")->UseRealTime();

ovrant_ustring MakeUserInfo(int members) {
  std::string body = MakeFlatObject(members);
  body.replace(0, 1, R"({"uid": "7", "email": "someone@stowra.example", "vkr_id": "8", )");
  return ovrant_ustring(body.data(), body.size());
}

void UserInfo(benchmark::State& state) {
  const ovrant_ustring text = MakeUserInfo(static_cast<int>(state.range()));
  for (auto _ : state) {
    UserInfoQuery query;
    if (!query.ParseResponse(text)) state.SkipWithError("not parsed");
  }
}
BENCHMARK(UserInfo)->Name("UserInfo/stowra")->Arg(2000)->Arg(20000)->UseRealTime();

// Parses ten answers and keeps all results. Together they have as many members as the one large
// answer.
void TenUserInfos(benchmark::State& state) {
  const std::vector<ovrant_ustring> texts(10, MakeUserInfo(2000));
  for (auto _ : state) {
    std::array<UserInfoQuery, 10> queries;
    auto query = queries.begin();
    for (const ovrant_ustring& text : texts) {
      if (!(query++)->ParseResponse(text)) state.SkipWithError("not parsed");
    }
  }
}
BENCHMARK(TenUserInfos)->Name("UserInfo/stowra/10x2000")->UseRealTime();

}  // namespace
}  // namespace stowra_bench
