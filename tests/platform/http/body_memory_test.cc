#include "common_stowraapi/platform/http/body_memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace stowra_test {
namespace {

using ovrant::internet::BodyBytes;
using ovrant::internet::BodyMemory;

constexpr std::size_t kMiddling = 100'000;
constexpr std::size_t kLarge = 10'000'000;

BodyBytes Allocate(std::size_t capacity) {
  BodyBytes piece(BodyMemory::Allocate(capacity));
  std::memset(piece.get(), 1, capacity);
  return piece;
}

// The address of a piece of that capacity, which is freed again.
std::uintptr_t PlaceOf(std::size_t capacity) {
  BodyBytes piece = Allocate(capacity);
  unsigned char* const place = piece.release();
  BodyMemory::Free(place);
  return reinterpret_cast<std::uintptr_t>(place);
}

class BodyMemoryTest : public ::testing::Test {
 protected:
  ~BodyMemoryTest() override { BodyMemory::KeepFreed(false); }
};

TEST_F(BodyMemoryTest, HasTheRequestedCapacity) {
  for (const std::size_t capacity : {std::size_t{1}, std::size_t{4096}, kMiddling, kLarge}) {
    EXPECT_GE(BodyMemory::CapacityOf(Allocate(capacity).get()), capacity);
  }
}

TEST_F(BodyMemoryTest, IsAlignedLikeMalloc) {
  const BodyBytes piece = Allocate(10);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece.get()) % alignof(std::max_align_t), 0U);
}

TEST_F(BodyMemoryTest, EnlargingKeepsTheBytes) {
  BodyBytes piece = Allocate(kMiddling);
  unsigned char* const moved = BodyMemory::Enlarge(piece.get(), kLarge);
  ASSERT_NE(moved, nullptr);
  static_cast<void>(piece.release());
  piece.reset(moved);
  EXPECT_GE(BodyMemory::CapacityOf(moved), kLarge);
  for (std::size_t i = 0; i < kMiddling; ++i) ASSERT_EQ(moved[i], 1);
}

TEST_F(BodyMemoryTest, KeepsAPieceForABodyThatFillsMostOfIt) {
  BodyMemory::KeepFreed(true);
  const std::uintptr_t place = PlaceOf(kMiddling);
  EXPECT_EQ(PlaceOf(kMiddling * 3 / 4), place);
  const BodyBytes much_smaller = Allocate(kMiddling / 3);
  const BodyBytes larger = Allocate(kMiddling + 1);
  EXPECT_EQ(PlaceOf(kMiddling), place);
}

TEST_F(BodyMemoryTest, NeverSharesAPiece) {
  BodyMemory::KeepFreed(true);
  for (int round = 0; round < 3; ++round) {
    std::vector<BodyBytes> pieces;
    for (int i = 0; i < 200; ++i) {
      pieces.push_back(Allocate(kMiddling));
      std::memset(pieces.back().get(), i, kMiddling);
    }
    for (int i = 0; i < 200; ++i) {
      ASSERT_EQ(pieces[static_cast<std::size_t>(i)].get()[0], i);
      ASSERT_EQ(pieces[static_cast<std::size_t>(i)].get()[kMiddling - 1], i);
    }
  }
}

}  // namespace
}  // namespace stowra_test
