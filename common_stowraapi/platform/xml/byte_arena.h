// Many small texts.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_BYTE_ARENA_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_BYTE_ARENA_H_

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/xml/memory_budget.h"

namespace ovrant::utils {

// Keeps copies of texts until it is destroyed. Takes its memory from a budget, which must outlive
// it.
class ByteArena {
 public:
  explicit ByteArena(MemoryBudget& budget) : budget_(budget) {}

  // The copy has a NUL behind it. std::bad_alloc leaves the arena as it was.
  std::string_view Copy(std::string_view text) {
    const std::size_t size = text.size() + 1;
    if (size > free_size_) AddChunk(size);
    char* const copy = free_;
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    free_ += size;
    free_size_ -= size;
    return {copy, text.size()};
  }

 private:
  void AddChunk(std::size_t least_size);

  MemoryBudget& budget_;
  std::size_t next_chunk_size_ = 1024;
  char* free_ = nullptr;  // of the last chunk
  std::size_t free_size_ = 0;
  std::vector<std::unique_ptr<char[]>> chunks_;
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_BYTE_ARENA_H_
