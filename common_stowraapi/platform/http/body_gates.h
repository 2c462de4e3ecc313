// SPDX-License-Identifier: MIT
// Calls of the host's sources and sinks.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_

#include <new>
#include <optional>

#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant::internet {

// The gates of the objects whose deletion ends the calls. A blocking transfer has none.
struct BodyGates {
  DeliveryGate* delegate = nullptr;
  DeliveryGate* transport = nullptr;

  // Runs `call`, which returns whether it succeeded. Returns `failure` if it does not or throws,
  // and kDropped without a call if a gate is closed.
  template <typename Function>
  Failure Call(const Failure& failure, const Function& call) const noexcept {
    try {
      std::optional<DeliveryGate::Call> delegate_call;
      std::optional<DeliveryGate::Call> transport_call;
      if (delegate != nullptr && !delegate_call.emplace(*delegate).has_entered()) return kDropped;
      if (transport != nullptr && !transport_call.emplace(*transport).has_entered()) {
        return kDropped;
      }
      return call() ? kNoFailure : failure;
    } catch (const std::bad_alloc&) {
      return kOutOfMemory;
    } catch (...) {
      return failure;
    }
  }
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_
