// SPDX-License-Identifier: MIT
// Measures the resources of the process.

#ifndef TESTS_SOAK_RESOURCES_H_
#define TESTS_SOAK_RESOURCES_H_

#include <cstddef>

namespace stowra_test {

int CountOpenDescriptors();

// Bytes allocated and not freed, or 0 if the platform cannot tell.
std::size_t LiveHeapBytes();

}  // namespace stowra_test

#endif  // TESTS_SOAK_RESOURCES_H_
