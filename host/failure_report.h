// SPDX-License-Identifier: MIT
// Tells the user why a command failed.

#ifndef HOST_FAILURE_REPORT_H_
#define HOST_FAILURE_REPORT_H_

#include <string>

#include "host/exit_status.h"

namespace stowra {

struct FailureReport {
  ExitStatus exit_status = ExitStatus::kCannotRun;
  std::string reason;          // a word for programs
  std::string message;         // a sentence for people
  std::string url;             // may be empty
  int status = 0;              // HTTP; 0 without a response
  std::string server_message;  // may be empty
};

// Prints a line to stderr, and with `json` the object {"error": {...}} to stdout. Returns the exit
// status.
ExitStatus Report(const FailureReport& failure, bool json);

}  // namespace stowra

#endif  // HOST_FAILURE_REPORT_H_
