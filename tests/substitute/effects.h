// SPDX-License-Identifier: MIT
// The list of effects, in order: the library's calls to the substitute platform, and what the tests
// add. For one thread.

#ifndef TESTS_SUBSTITUTE_EFFECTS_H_
#define TESTS_SUBSTITUTE_EFFECTS_H_

#include <string>
#include <vector>

#include "common_stowraapi/export.h"

// Found in a process that runs on the substitute, and in no other.
extern "C" STOWRA_EXPORT const int stowra_substitute_platform_marker;

namespace stowra_substitute {

// Appends one effect, such as "http://a/: Download".
STOWRA_EXPORT void Record(std::string effect);

// The effects since the last call.
STOWRA_EXPORT std::vector<std::string> TakeEffects();

// "null", or the address in hexadecimal digits, such as "0x2a".
STOWRA_EXPORT std::string AddressText(const void* address);

// Registrations in the notification center: one for each pair of name and observer.
STOWRA_EXPORT int CountRegistrations();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_EFFECTS_H_
