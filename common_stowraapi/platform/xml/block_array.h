// An array that grows without moving.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_BLOCK_ARRAY_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_BLOCK_ARRAY_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "common_stowraapi/platform/xml/memory_budget.h"

namespace ovrant::utils {

// Elements in blocks, reached by a 32-bit index. They are neither initialised nor destroyed. Takes
// its memory from a budget, which must outlive it, and never holds more than one block too much.
template <typename T>
class BlockArray {
  static_assert(std::is_trivially_default_constructible_v<T> &&
                std::is_trivially_destructible_v<T>);

 public:
  // Takes `reserve_per_element` bytes more of the budget for each element, for what its owner will
  // allocate for them.
  explicit BlockArray(MemoryBudget& budget, std::size_t reserve_per_element = 0)
      : budget_(budget), bytes_per_element_(sizeof(T) + reserve_per_element) {}

  std::uint32_t size() const { return size_; }

  T& operator[](std::uint32_t index) { return blocks_[index / kBlockSize][index % kBlockSize]; }
  const T& operator[](std::uint32_t index) const {
    return blocks_[index / kBlockSize][index % kBlockSize];
  }

  // Appends an element for the caller to fill. std::bad_alloc leaves the array as it was.
  T& Append() {
    if (next_ == end_) AddBlock();
    ++size_;
    return *next_++;
  }

 private:
  static constexpr std::uint32_t kBlockSize = 1024;

  void AddBlock() {
    budget_.Take(kBlockSize * bytes_per_element_);
    blocks_.push_back(std::unique_ptr<T[]>(new T[kBlockSize]));
    next_ = blocks_.back().get();
    end_ = next_ + kBlockSize;
  }

  MemoryBudget& budget_;
  const std::size_t bytes_per_element_;
  std::uint32_t size_ = 0;
  T* next_ = nullptr;  // of the last block
  T* end_ = nullptr;
  std::vector<std::unique_ptr<T[]>> blocks_;
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_BLOCK_ARRAY_H_
