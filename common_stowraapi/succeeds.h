// Running out of memory as one more way to fail.

#ifndef COMMON_STOWRAAPI_SUCCEEDS_H_
#define COMMON_STOWRAAPI_SUCCEEDS_H_

#include <new>

namespace ovrant {

// What `work`, which says whether it has succeeded, gives; false when it throws std::bad_alloc.
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
