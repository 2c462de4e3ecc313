// SPDX-License-Identifier: MIT
// Detects the construction of transports. Their constructor is inline, so the library contains it.

#ifndef TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
#define TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_

namespace stowra_substitute {

// Called for each empty string that is constructed. A transport constructs exactly four of them
// side by side.
void WatchEmptyString(const void* string);

// Called before each other effect. Records "<url>: constructed" if the last
// four strings lie inside a transport.
void RecordWatchedTransport();

// The number of transports constructed so far.
int CountConstructedTransports();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
