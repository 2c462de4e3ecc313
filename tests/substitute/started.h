// SPDX-License-Identifier: MIT
// Requests in the background, and answers to them.

#ifndef TESTS_SUBSTITUTE_STARTED_H_
#define TESTS_SUBSTITUTE_STARTED_H_

#include <memory>
#include <type_traits>

#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"

namespace stowra_substitute {

using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

inline constexpr char kUser[] = R"({"uid":"1","email":"e","vkr_id":"v","displayname":"Ada"})";
inline constexpr char kUpdate[] =
    R"({"update":{"current_version":"2","expire_version":"1"},"datafiles":[{"version":3}]})";

// A new object whose request is running.
template <typename Request>
std::unique_ptr<Request> Started(const char* url = "http://a/") {
  auto request = std::make_unique<Request>();
  if constexpr (std::is_same_v<Request, ExtensionStoreStatus>) {
    request->Init(url, nullptr, "{}");
    request->AsynchronousStatus();
  } else {
    request->Init(url, nullptr);
    request->AsynchronousRequest();
  }
  return request;
}

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_STARTED_H_
