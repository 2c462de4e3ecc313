// What exit_child and unload_child agree upon with the test that runs them.

#ifndef TESTS_PLATFORM_TRANSPORT_EXIT_CHILD_H_
#define TESTS_PLATFORM_TRANSPORT_EXIT_CHILD_H_

namespace stowra_test {

inline constexpr int kExitChildTransfers = 10;
inline constexpr int kExitChildCode = 7;
inline constexpr char kExitChildLeaving[] = "leaving";
inline constexpr char kExitChildReady[] = "ready";
inline constexpr char kUnloadChildUnloaded[] = "unloaded";

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_TRANSPORT_EXIT_CHILD_H_
