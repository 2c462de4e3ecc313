// SPDX-License-Identifier: MIT
// The host's sink, as the transfer that fills it sees it.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SINK_WRITER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SINK_WRITER_H_

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/http/body_gates.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/header_fields.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Offers replies to a sink and writes the body of the one that it takes. No exception leaves it.
// For one thread at a time.
class SinkWriter {
 public:
  // `cap` is the most bytes of a body that the sink gets.
  SinkWriter(std::shared_ptr<BodySink> sink, std::size_t cap) : sink_(std::move(sink)), cap_(cap) {}

  // Set before the first call of the sink.
  void set_gates(const BodyGates& gates) { gates_ = gates; }

  // What the host's code took since the last call.
  BodyGates::Clock::duration TakeHostTime() { return gates_.TakeTime(); }

  std::size_t cap() const { return cap_; }

  // Adds the sink's headers and makes ready for another reply. Call it before each request.
  Failure BeginRequest(ovrant::utils::StringMap& headers) noexcept;

  // Lets the sink choose. A failure refuses the reply. One that wants_another may be followed by
  // another request.
  Failure Offer(int status, const HeaderFields& headers) noexcept;
  bool takes() const { return takes_; }
  bool wants_another() const { return wants_another_; }

  // Only if it takes the body.
  Failure Write(std::string_view bytes) noexcept;
  Failure End() noexcept;

 private:
  const std::shared_ptr<BodySink> sink_;
  const std::size_t cap_;
  BodyGates gates_;
  bool takes_ = false;
  bool wants_another_ = false;
  bool has_asked_again_ = false;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SINK_WRITER_H_
