// Seeing transports begin, though their constructor is inline and compiled into the library.

#ifndef TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
#define TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_

namespace stowra_substitute {

// Told of each empty string that is constructed. A transport constructs four of them side by side,
// and no more.
void WatchEmptyString(const void* string);

// Called before anything else is recorded or asked for: records "<url>: constructed" if the last
// four strings lie inside a transport.
void RecordWatchedTransport();

// Transports whose construction has been seen.
int CountConstructedTransports();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
