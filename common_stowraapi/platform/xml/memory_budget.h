// A limit on memory.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_MEMORY_BUDGET_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_MEMORY_BUDGET_H_

#include <cstddef>
#include <new>

namespace ovrant::utils {

// What a data structure may still allocate, in bytes. Whoever grows it takes from here first.
class MemoryBudget {
 public:
  explicit MemoryBudget(std::size_t bytes) : left_(bytes) {}

  MemoryBudget(const MemoryBudget&) = delete;
  MemoryBudget& operator=(const MemoryBudget&) = delete;

  // Beyond the budget it takes nothing: one gives false, the other throws what an allocation
  // throws.
  bool TryTake(std::size_t bytes) {
    if (bytes > left_) return false;
    left_ -= bytes;
    return true;
  }
  void Take(std::size_t bytes) {
    if (!TryTake(bytes)) throw std::bad_alloc();
  }

  void Return(std::size_t bytes) { left_ += bytes; }

 private:
  std::size_t left_;
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_MEMORY_BUDGET_H_
