// SPDX-License-Identifier: MIT
// A sink that must not be called once its transfer has been dropped.

#ifndef TESTS_SOAK_SOAK_SINK_H_
#define TESTS_SOAK_SOAK_SINK_H_

#include <atomic>
#include <cstddef>
#include <string>

#include "common_stowraapi/platform/body_sink.h"
#include "tests/soak/report.h"

namespace stowra_test {

class SoakSink final : public ovrant::internet::BodySink {
 public:
  // From now on a call is a violation. Any thread.
  void Forbid() { is_forbidden_ = true; }

  // Of the last reply, once the transfer has ended.
  bool has_taken() const { return has_taken_; }
  const std::string& bytes() const { return bytes_; }

  Choice Begin(int status, const ovrant::utils::StringMap& headers) override {
    Check(!is_forbidden_, "a sink was offered a reply after its transfer was dropped");
    const Choice choice = BodySink::Begin(status, headers);
    has_taken_ = choice == Choice::kTake;
    return choice;
  }
  bool Write(const unsigned char* data, std::size_t size) override {
    Check(!is_forbidden_, "a sink was written to after its transfer was dropped");
    bytes_.append(reinterpret_cast<const char*>(data), size);
    return true;
  }
  bool End() override {
    Check(!is_forbidden_, "a sink was ended after its transfer was dropped");
    return true;
  }

 private:
  std::atomic<bool> is_forbidden_{false};
  bool has_taken_ = false;
  std::string bytes_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_SOAK_SINK_H_
