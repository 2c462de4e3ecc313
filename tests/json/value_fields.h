// SPDX-License-Identifier: MIT
// Reads the private members of a handle.

#ifndef TESTS_JSON_VALUE_FIELDS_H_
#define TESTS_JSON_VALUE_FIELDS_H_

#include <cstddef>

#include "common_stowraapi/json/value.h"

namespace stowra_test {

bool IsOwned(const ovrant::json::Value& handle);
void* NodeOf(const ovrant::json::Value& handle);
void* AllocatorOf(const ovrant::json::Value& handle);

// The number of handles that `handle` returned and keeps.
std::size_t CountHandles(const ovrant::json::Value& handle);

}  // namespace stowra_test

#endif  // TESTS_JSON_VALUE_FIELDS_H_
