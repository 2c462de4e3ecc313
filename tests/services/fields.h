// SPDX-License-Identifier: MIT
// All members of a record of the services, to compare and to show them at once. They stand in the
// order of the class.

#ifndef TESTS_SERVICES_FIELDS_H_
#define TESTS_SERVICES_FIELDS_H_

#include <tuple>

#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"

namespace stowra_test {

inline auto Fields(const ovrant::webservices::MessageData& record) {
  return std::make_tuple(record.id, record.max_shows, record.width, record.height,
                         record.title.utf8(), record.url.utf8());
}
inline auto Fields(const ovrant::webservices::DataFileData& record) {
  return std::make_tuple(record.version, record.filename.utf8(), record.url.utf8());
}
inline auto Fields(const ovrant::extensionstoreapi::ExtensionStoreItem& record) {
  return std::make_tuple(record.id.utf8(), record.version_uuid.utf8(), record.version,
                         record.file_url.utf8(), record.update, record.remote_kill, record.enabled);
}

}  // namespace stowra_test

#endif  // TESTS_SERVICES_FIELDS_H_
