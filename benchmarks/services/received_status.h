// SPDX-License-Identifier: MIT
// An extension store status that has received an answer.

#ifndef BENCHMARKS_SERVICES_RECEIVED_STATUS_H_
#define BENCHMARKS_SERVICES_RECEIVED_STATUS_H_

#include <string>

#include "common_stowraapi/services/extension_store_status.h"

namespace stowra_bench {

// Fetches `body` from a server on this machine in the background and keeps it in the transport.
// OnReceivedStatusResponse(200) can read it any number of times.
class ReceivedStatus {
 public:
  // Throws std::runtime_error if the request fails.
  explicit ReceivedStatus(const std::string& body);

  ovrant::extensionstoreapi::ExtensionStoreStatus& status() { return status_; }

 private:
  ovrant::extensionstoreapi::ExtensionStoreStatus status_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_RECEIVED_STATUS_H_
