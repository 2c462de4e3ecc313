// SPDX-License-Identifier: MIT
// What answers requests in place of the services.

#ifndef EMULATOR_EXCHANGE_SOURCE_H_
#define EMULATOR_EXCHANGE_SOURCE_H_

#include <chrono>
#include <string>
#include <vector>

#include "emulator/http_fields.h"

namespace stowra_emulator {

struct HttpRequest {
  std::string method;
  std::string target;  // Path and query, as sent.
  HttpFields fields;
  std::string body;  // As sent, but not in chunks.
};

struct HttpResponse {
  int status = 0;
  std::string reason;
  HttpFields fields;
  std::string body;                    // As it follows the head.
  std::chrono::milliseconds delay{0};  // Before the first byte.

  // Status line, fields and the empty line.
  std::string Head() const;
};

// Safe from any thread.
class ExchangeSource {
 public:
  virtual ~ExchangeSource() = default;

  // Throws a RequestError if it has no answer.
  virtual HttpResponse Answer(const HttpRequest& request) = 0;

  // The paths that faults may name. Empty if every path may be.
  virtual std::vector<std::string> Paths() const { return {}; }
};

}  // namespace stowra_emulator

#endif  // EMULATOR_EXCHANGE_SOURCE_H_
