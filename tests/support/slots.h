// SPDX-License-Identifier: MIT
// Virtual functions by their number in the object's table, as a compiled host calls them. The table
// is that of the C++ ABI of Linux and macOS.

#ifndef TESTS_SUPPORT_SLOTS_H_
#define TESTS_SUPPORT_SLOTS_H_

#include <cstring>

#if defined(__clang__)
#define STOWRA_ANY_FUNCTION_TYPE __attribute__((no_sanitize("function")))
#else
#define STOWRA_ANY_FUNCTION_TYPE
#endif

namespace stowra_test {

inline void* FunctionIn(const void* object, int slot) {
  void* const* table;
  std::memcpy(&table, object, sizeof(table));
  return table[slot];
}

// A virtual function takes the object as its first argument. The type spelt here is not its own,
// which a check of function types would report.
template <typename Result = void, typename... Args>
STOWRA_ANY_FUNCTION_TYPE Result CallSlot(void* object, int slot, Args... args) {
  return reinterpret_cast<Result (*)(void*, Args...)>(FunctionIn(object, slot))(object, args...);
}

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_SLOTS_H_
