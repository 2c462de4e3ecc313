// An extension store status that has an answer.

#ifndef BENCHMARKS_SERVICES_RECEIVED_STATUS_H_
#define BENCHMARKS_SERVICES_RECEIVED_STATUS_H_

#include <string>

#include "common_stowraapi/services/extension_store_status.h"

namespace stowra_bench {

// Its object has fetched `body` from a server on this machine, in the background, and its transport
// still holds it: OnReceivedStatusResponse(200) takes it over as often as wanted.
class ReceivedStatus {
 public:
  // Throws std::runtime_error when the request fails.
  explicit ReceivedStatus(const std::string& body);

  ovrant::extensionstoreapi::ExtensionStoreStatus& status() { return status_; }

 private:
  ovrant::extensionstoreapi::ExtensionStoreStatus status_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_RECEIVED_STATUS_H_
