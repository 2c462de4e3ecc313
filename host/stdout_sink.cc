// SPDX-License-Identifier: MIT
#include "host/stdout_sink.h"

#include <cerrno>
#include <cstdio>

#include "host/http_status.h"

namespace stowra {

StdoutSink::Choice StdoutSink::Begin(int status, const ovrant::utils::StringMap& /*headers*/) {
  return status == kHttpOk ? Choice::kTake : Choice::kLeave;
}

bool StdoutSink::Write(const unsigned char* data, std::size_t size) {
  has_written_ = true;
  return Succeeds(std::fwrite(data, 1, size, stdout) == size);
}

bool StdoutSink::End() { return Succeeds(std::fflush(stdout) == 0); }

bool StdoutSink::Succeeds(bool good) {
  if (!good) error_ = errno;
  return good;
}

}  // namespace stowra
