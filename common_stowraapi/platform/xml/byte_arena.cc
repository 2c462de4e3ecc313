#include "common_stowraapi/platform/xml/byte_arena.h"

#include <algorithm>

namespace ovrant::utils {
namespace {

constexpr std::size_t kLargestChunk = std::size_t{64} * 1024;

}  // namespace

void ByteArena::AddChunk(std::size_t least_size) {
  const std::size_t size = std::max(least_size, next_chunk_size_);
  budget_.Take(size);
  chunks_.push_back(std::unique_ptr<char[]>(new char[size]));
  free_ = chunks_.back().get();
  free_size_ = size;
  next_chunk_size_ = std::min(2 * next_chunk_size_, kLargestChunk);
}

}  // namespace ovrant::utils
