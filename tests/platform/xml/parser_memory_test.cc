#include "common_stowraapi/platform/xml/parser_memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

using ovrant::xml::ParserMemory;

constexpr std::size_t kSize = 100;

void* Filled(std::size_t size) {
  void* const block = ParserMemory::Allocate(size);
  if (block != nullptr) std::memset(block, 'x', size);
  return block;
}

void ExpectFilled(const void* block, std::size_t size) {
  const auto* const bytes = static_cast<const char*>(block);
  for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], 'x') << i;
}

TEST(XmlParserMemoryTest, HasNoBlockWhoseSizeCannotBeCounted) {
  const ParserMemory memory(SIZE_MAX);
  EXPECT_EQ(ParserMemory::Allocate(SIZE_MAX), nullptr);
  EXPECT_EQ(ParserMemory::Allocate(SIZE_MAX - 1), nullptr);
  EXPECT_EQ(ParserMemory::Reallocate(nullptr, SIZE_MAX), nullptr);
  void* const block = Filled(kSize);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(ParserMemory::Reallocate(block, SIZE_MAX - 1), nullptr);
  ExpectFilled(block, kSize);
  ParserMemory::Free(block);
}

TEST(XmlParserMemoryTest, ReallocatesNothingAsANewBlock) {
  const ParserMemory memory(1000);
  void* const block = ParserMemory::Reallocate(nullptr, kSize);
  ASSERT_NE(block, nullptr);
  std::memset(block, 'x', kSize);
  ParserMemory::Free(block);
  ParserMemory::Free(nullptr);
}

// A block and its successor are held together while one moves.
TEST(XmlParserMemoryTest, WhatIsFreedOrMovedMayBeTakenAgain) {
  const ParserMemory memory(4 * kSize);
  for (int i = 0; i < 100; ++i) {
    void* block = Filled(kSize);
    ASSERT_NE(block, nullptr);
    block = ParserMemory::Reallocate(block, 2 * kSize);
    ASSERT_NE(block, nullptr);
    ExpectFilled(block, kSize);
    EXPECT_EQ(ParserMemory::Allocate(2 * kSize), nullptr);
    ParserMemory::Free(block);
  }
}

TEST(XmlParserMemoryTest, ABlockThatMayNotGrowStays) {
  const ParserMemory memory(3 * kSize);
  void* const block = Filled(kSize);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(ParserMemory::Reallocate(block, 2 * kSize), nullptr);
  ExpectFilled(block, kSize);
  ParserMemory::Free(block);
}

#ifdef STOWRA_COUNTS_MEMORY

TEST(XmlParserMemoryTest, ABlockThatCannotGrowStaysAndCostsWhatItDid) {
  const ParserMemory memory(4 * kSize);
  void* block = Filled(kSize);
  ASSERT_NE(block, nullptr);
  for (int i = 0; i < 100; ++i) {
    const FailingMalloc failing(0);
    ASSERT_EQ(ParserMemory::Reallocate(block, 2 * kSize), nullptr);
  }
  ExpectFilled(block, kSize);
  block = ParserMemory::Reallocate(block, 2 * kSize);
  EXPECT_NE(block, nullptr);
  ParserMemory::Free(block);
}

#endif

}  // namespace
}  // namespace stowra_test
