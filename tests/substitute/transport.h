// The test's side of the substitute transport: what its transfers give, and when.

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

  // What SendAndRead stores through its status pointer, where it is not `status`.
  std::optional<int> stored_status;
};

// A response that arrived whole, and a transfer that failed before one began.
inline Outcome Reply(int status, std::string body) { return {true, status, std::move(body), {}}; }
inline Outcome NoReply() { return {false, 0, "", {}}; }

// Appends the outcome of a blocking transfer. A transfer that finds none records that, and fails.
STOWRA_EXPORT void ScriptTransfer(Outcome outcome);

// Outcomes that no transfer has taken yet.
STOWRA_EXPORT int CountScripted();

// Whether the background transfers begun from now on start at all, and say so. They do at first.
STOWRA_EXPORT void SetStartsInBackground(bool starts);

// Whether the background transfers begun from now on fail at once: their delegate posts its failed
// name before the start returns. They do not at first.
STOWRA_EXPORT void SetFailsAtOnce(bool fails);

// Ends the background transfer of `url`: its status and body appear in its transport, then its
// delegate posts one of its names with its context. False, and nothing happens, when there is none:
// it never started, it has ended, or its transport or delegate is gone.
STOWRA_EXPORT bool EndTransfer(const std::string& url, const Outcome& outcome);

// Objects that exist now.
STOWRA_EXPORT int CountTransports();
STOWRA_EXPORT int CountDelegates();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TRANSPORT_H_
