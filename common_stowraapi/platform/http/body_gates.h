// SPDX-License-Identifier: MIT
// Calls of the host's sources and sinks.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_

#include <chrono>
#include <new>
#include <optional>
#include <utility>

#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant::internet {

// The gates of the objects whose deletion ends the calls. A blocking transfer has none.
class BodyGates {
 public:
  using Clock = std::chrono::steady_clock;

  BodyGates() = default;
  BodyGates(DeliveryGate* delegate, DeliveryGate* transport)
      : delegate_(delegate), transport_(transport) {}

  // What the calls took since the last TakeTime.
  Clock::duration TakeTime() { return std::exchange(time_, Clock::duration::zero()); }

  // Runs `call`, which returns whether it succeeded. Returns `failure` if it does not or throws,
  // and kDropped without a call if a gate is closed.
  template <typename Function>
  Failure Call(const Failure& failure, const Function& call) noexcept {
    const Clock::time_point begin = Clock::now();
    const Failure result = CallUnlessClosed(failure, call);
    time_ += Clock::now() - begin;
    return result;
  }

 private:
  template <typename Function>
  Failure CallUnlessClosed(const Failure& failure, const Function& call) const noexcept {
    try {
      std::optional<DeliveryGate::Call> delegate_call;
      std::optional<DeliveryGate::Call> transport_call;
      if (delegate_ != nullptr && !delegate_call.emplace(*delegate_).has_entered()) return kDropped;
      if (transport_ != nullptr && !transport_call.emplace(*transport_).has_entered()) {
        return kDropped;
      }
      return call() ? kNoFailure : failure;
    } catch (const std::bad_alloc&) {
      return kOutOfMemory;
    } catch (...) {
      return failure;
    }
  }

  DeliveryGate* delegate_ = nullptr;
  DeliveryGate* transport_ = nullptr;
  Clock::duration time_{0};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_GATES_H_
