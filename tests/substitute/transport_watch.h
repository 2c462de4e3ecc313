// Seeing transports begin, though their constructor is inline and compiled into the library.

#ifndef TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
#define TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_

namespace stowra_substitute {

// Told of each empty string that is constructed. A transport constructs four of them side by side:
// at a fourth one that lies inside a transport, "<url>: constructed" is recorded.
void WatchEmptyString(const void* string);

// Transports whose construction has been seen.
int CountConstructedTransports();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TRANSPORT_WATCH_H_
