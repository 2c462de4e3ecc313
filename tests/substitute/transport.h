// SPDX-License-Identifier: MIT
// Controls the transfers of the substitute transport.

#ifndef TESTS_SUBSTITUTE_TRANSPORT_H_
#define TESTS_SUBSTITUTE_TRANSPORT_H_

#include <optional>
#include <string>
#include <utility>

#include "common_stowraapi/export.h"

namespace stowra_substitute {

// How one transfer ends. The body is published without a NUL after it, in a block of its exact
// size.
struct Outcome {
  bool received = true;  // what Download and SendAndRead return, or the name that is posted
  int status = 200;
  std::string body;

  // The status that SendAndRead stores, if it differs from `status`.
  std::optional<int> stored_status;

  // The length of the body that the transport states, if it is not that of `body`.
  std::optional<unsigned long> stated_length = {};
};

// A response that arrived whole, and a transfer that failed before one began.
inline Outcome Reply(int status, std::string body) { return {true, status, std::move(body), {}}; }
inline Outcome NoReply() { return {false, 0, "", {}}; }

// Appends the outcome of a blocking transfer. A transfer without an outcome records that and fails.
STOWRA_EXPORT void ScriptTransfer(Outcome outcome);

// The number of outcomes that no transfer has taken yet.
STOWRA_EXPORT int CountScripted();

// Sets whether background transfers start from now on. Otherwise the start returns false.
STOWRA_EXPORT void SetStartsInBackground(bool starts);

// Sets whether background transfers fail at once from now on. The delegate then posts its failed
// name before the start returns.
STOWRA_EXPORT void SetFailsAtOnce(bool fails);

// Ends the background transfer of `url`: its status and body appear in its transport, then its
// delegate posts one of its names with its context. False if no such transfer is running.
STOWRA_EXPORT bool EndTransfer(const std::string& url, const Outcome& outcome);

// The number of objects that exist now.
STOWRA_EXPORT int CountTransports();
STOWRA_EXPORT int CountDelegates();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TRANSPORT_H_
