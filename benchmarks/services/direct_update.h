// SPDX-License-Identifier: MIT
// The limit for reading the update service's answer: RapidJSON alone.

#ifndef BENCHMARKS_SERVICES_DIRECT_UPDATE_H_
#define BENCHMARKS_SERVICES_DIRECT_UPDATE_H_

#include <string>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/update_query.h"

namespace stowra_bench {

// The results of an UpdateQuery.
struct UpdateResults {
  ovrant::utils::ovrant_ustring current_version;
  ovrant::utils::ovrant_ustring expire_version;
  ovrant::webservices::MessageData message;
  std::vector<ovrant::webservices::DataFileData> data_files;
};

// Reads `body` into new `results`, as UpdateQuery::ParseResponse does.
bool DirectUpdate(const std::string& body, UpdateResults& results);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_DIRECT_UPDATE_H_
