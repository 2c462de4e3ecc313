// SPDX-License-Identifier: MIT
// The names under which requests post for the host.

#ifndef TESTS_SOAK_PUBLIC_NAMES_H_
#define TESTS_SOAK_PUBLIC_NAMES_H_

#include <array>

#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"

namespace stowra_test {

inline std::array<const char*, 5> PublicNames() {
  return {ovrant::webservices::UserInfoQuery::kUserInfoUpdatedNotification,
          ovrant::webservices::UpdateQuery::kUpdateQuerySucceededNotification,
          ovrant::webservices::UpdateQuery::kUpdateQueryFailedNotification,
          kExtensionStoreAsynchStatusSucceededNotification,
          kExtensionStoreAsynchStatusFailedNotification};
}

}  // namespace stowra_test

#endif  // TESTS_SOAK_PUBLIC_NAMES_H_
