// SPDX-License-Identifier: MIT
// Turns running out of memory into a failure.

#ifndef COMMON_STOWRAAPI_SUCCEEDS_H_
#define COMMON_STOWRAAPI_SUCCEEDS_H_

#include <new>

namespace ovrant {

// The result of `work`, or false if it throws std::bad_alloc.
template <typename Work>
bool Succeeds(const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_SUCCEEDS_H_
