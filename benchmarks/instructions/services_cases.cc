// SPDX-License-Identifier: MIT
#include <memory>

#include "benchmarks/instructions/case.h"
#include "benchmarks/services/direct_item_map.h"
#include "benchmarks/services/direct_update.h"
#include "benchmarks/services/received_status.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/update_query.h"

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;

constexpr int kExtensions = 200;
constexpr unsigned kStatusOk = 200;

void AddItemMaps(Cases& cases) {
  const std::string count = std::to_string(kExtensions);
  const std::string body = MakeExtensionStatus(kExtensions);
  const auto received = std::make_shared<ReceivedStatus>(body);
  cases.push_back({"ItemMap/stowra/" + count, [received] {
                     received->status().OnReceivedStatusResponse(kStatusOk);
                     return received->status().GetItemMapFromResponse().size() == kExtensions;
                   }});
  cases.push_back(
      {"ItemMap/rapidjson/" + count, [body] { return DirectItemMap(body).size() == kExtensions; }});
}

void AddUpdates(Cases& cases) {
  const std::string body = MakeUpdateResponse();
  const auto query = std::make_shared<UpdateQuery>();
  cases.push_back({"UpdateQuery/stowra/2k", [body, query] {
                     return query->ParseResponse(ovrant_ustring(body.data(), body.size()));
                   }});
  cases.push_back({"UpdateQuery/rapidjson/2k", [body] {
                     UpdateResults results;
                     return DirectUpdate(body, results);
                   }});
}

}  // namespace

void AddServicesCases(Cases& cases) {
  AddItemMaps(cases);
  AddUpdates(cases);
}

}  // namespace stowra_bench
