// SPDX-License-Identifier: MIT
// A download to standard output.

#ifndef HOST_STDOUT_SINK_H_
#define HOST_STDOUT_SINK_H_

#include <cstddef>

#include "common_stowraapi/platform/body_sink.h"

namespace stowra {

// Writes the body of a response with status 200 while it arrives.
class StdoutSink final : public ovrant::internet::BodySink {
 public:
  // The system's number of the error that ended it, or 0.
  int error() const { return error_; }

  // Whether something has been written, which cannot be taken back.
  bool has_written() const { return has_written_; }

  Choice Begin(int status, const ovrant::utils::StringMap& headers) override;
  bool Write(const unsigned char* data, std::size_t size) override;
  bool End() override;

 private:
  bool Succeeds(bool good);

  int error_ = 0;
  bool has_written_ = false;
};

}  // namespace stowra

#endif  // HOST_STDOUT_SINK_H_
