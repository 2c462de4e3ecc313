#include "common_stowraapi/platform/xml/parser_memory.h"

#include <cstdlib>
#include <limits>

#include "common_stowraapi/platform/xml/large_pages.h"

namespace ovrant::xml {
namespace {

thread_local utils::MemoryBudget* budget = nullptr;

// In front of each block: how much of the budget it has taken.
struct alignas(std::max_align_t) Header {
  std::size_t taken;
};

Header* HeaderOf(void* block) { return static_cast<Header*>(block) - 1; }

// The budget that a block of that size takes; 0 if there is no such size.
std::size_t Cost(std::size_t size) {
  return size > std::numeric_limits<std::size_t>::max() - sizeof(Header) ? 0
                                                                         : size + sizeof(Header);
}

void* Finish(void* memory, std::size_t cost) {
  if (memory == nullptr) {
    budget->Return(cost);
    return nullptr;
  }
  auto* const header = static_cast<Header*>(memory);
  header->taken = cost;
  return header + 1;
}

}  // namespace

ParserMemory::ParserMemory(std::size_t bytes) : budget_(bytes) { budget = &budget_; }

ParserMemory::~ParserMemory() { budget = nullptr; }

void* ParserMemory::Allocate(std::size_t size) {
  const std::size_t cost = Cost(size);
  if (cost == 0 || !budget->TryTake(cost)) return nullptr;
  void* const memory = std::malloc(cost);
  if (memory != nullptr) utils::PreferLargePages(memory, cost);
  return Finish(memory, cost);
}

void* ParserMemory::Reallocate(void* block, std::size_t size) {
  if (block == nullptr) return Allocate(size);
  const std::size_t cost = Cost(size);
  if (cost == 0 || !budget->TryTake(cost)) return nullptr;
  Header* const old_header = HeaderOf(block);
  const std::size_t old_cost = old_header->taken;
  void* const moved = Finish(std::realloc(old_header, cost), cost);
  if (moved != nullptr) budget->Return(old_cost);
  return moved;
}

void ParserMemory::Free(void* block) {
  if (block == nullptr) return;
  Header* const header = HeaderOf(block);
  budget->Return(header->taken);
  std::free(header);
}

}  // namespace ovrant::xml
