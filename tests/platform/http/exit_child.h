// SPDX-License-Identifier: MIT
// What exit_child and unload_child share with the test that runs them.

#ifndef TESTS_PLATFORM_HTTP_EXIT_CHILD_H_
#define TESTS_PLATFORM_HTTP_EXIT_CHILD_H_

#include <chrono>
#include <string>

namespace stowra_test {

inline constexpr int kExitChildTransfers = 10;
inline constexpr int kExitChildRequests = 3;  // one of each kind
inline constexpr int kExitChildCode = 7;

// Less than the time that the library would wait for a thread at exit.
inline constexpr std::chrono::milliseconds kExitChildForkedExit(400);

inline constexpr char kExitChildLeaving[] = "leaving";
inline constexpr char kExitChildReady[] = "ready";
inline constexpr char kUnloadChildUnloaded[] = "unloaded";

// Shared by the parts of exit_child.
void WaitForWord();
void Say(const char* text);
int Leave();         // says that it leaves, and returns kExitChildCode
int WaitAndLeave();  // waits for the word before

// Exits while a request of each kind runs. Returns 2 when there is no such mode.
int RunWithRequests(const std::string& mode, const std::string& url);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_EXIT_CHILD_H_
