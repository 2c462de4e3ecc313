// SPDX-License-Identifier: MIT
// A request that a handler refuses.

#ifndef EMULATOR_REQUEST_ERROR_H_
#define EMULATOR_REQUEST_ERROR_H_

#include <stdexcept>
#include <string>

namespace stowra_emulator {

// Thrown by a handler. It becomes the answer.
struct RequestError : std::runtime_error {
  RequestError(int error_status, const std::string& message)
      : std::runtime_error(message), status(error_status) {}

  int status;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_REQUEST_ERROR_H_
