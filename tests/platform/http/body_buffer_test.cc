// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/body_buffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>

// Makes allocations fail with null under the sanitizers, as they do elsewhere.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __asan_default_options() { return "allocator_may_return_null=1"; }
const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

namespace stowra_test {
namespace {

using ovrant::internet::BodyBuffer;

std::string TextOf(const BodyBuffer& buffer) {
  return std::string(reinterpret_cast<const char*>(buffer.data()), buffer.size());
}

TEST(BodyBuffer, GrowsByWhatIsAppended) {
  BodyBuffer buffer;
  std::string expected;
  for (std::size_t size : {1U, 0U, 5000U, 100000U, 3U}) {
    const std::string piece(size, static_cast<char>('a' + size % 26));
    buffer.Append(piece.data(), piece.size());
    expected += piece;
  }
  EXPECT_TRUE(TextOf(buffer) == expected);
}

TEST(BodyBuffer, RoomIsWrittenThenCounted) {
  BodyBuffer buffer;
  buffer.Append("ab", 2);
  std::memcpy(buffer.Room(100), "cde", 3);
  EXPECT_EQ(TextOf(buffer), "ab");
  buffer.Grow(3);
  EXPECT_EQ(TextOf(buffer), "abcde");
}

TEST(BodyBuffer, ReserveKeepsTheBytesAndAvoidsMoves) {
  BodyBuffer buffer;
  buffer.Append("ab", 2);
  buffer.Reserve(1 << 20);
  const unsigned char* const place = buffer.data();
  const std::string piece((1 << 20) - 2, 'x');
  buffer.Append(piece.data(), piece.size());
  EXPECT_EQ(buffer.data(), place);
  EXPECT_TRUE(TextOf(buffer) == "ab" + piece);
  buffer.Reserve(1);
  EXPECT_EQ(buffer.size(), piece.size() + 2);
}

TEST(BodyBuffer, ReleaseHandsTheBytesOver) {
  BodyBuffer buffer;
  buffer.Append("hello", 5);
  const std::unique_ptr<unsigned char, decltype(&std::free)> bytes(buffer.Release(), &std::free);
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::memcmp(bytes.get(), "hello", 5), 0);
  EXPECT_EQ(buffer.size(), 0U);
  buffer.Append("again", 5);
  EXPECT_EQ(TextOf(buffer), "again");
}

TEST(BodyBuffer, ReleaseOfAnEmptyBufferIsNull) {
  BodyBuffer buffer;
  EXPECT_EQ(buffer.size(), 0U);
  EXPECT_EQ(buffer.Release(), nullptr);
  buffer.Reserve(100);
  EXPECT_EQ(buffer.Release(), nullptr);
  buffer.Append("x", 1);
  buffer.Clear();
  EXPECT_EQ(buffer.size(), 0U);
  EXPECT_EQ(buffer.Release(), nullptr);
}

TEST(BodyBuffer, IsUnchangedWhenMemoryRunsOut) {
  BodyBuffer buffer;
  buffer.Append("hello", 5);
  EXPECT_THROW(buffer.Reserve(SIZE_MAX / 2), std::bad_alloc);
  EXPECT_THROW(buffer.Room(SIZE_MAX / 2), std::bad_alloc);
  EXPECT_EQ(TextOf(buffer), "hello");
}

TEST(BodyBuffer, MoveTakesTheBytesAndTheRoom) {
  BodyBuffer buffer;
  buffer.Append("hello", 5);
  buffer.Reserve(100);
  const unsigned char* const place = buffer.data();
  BodyBuffer moved = std::move(buffer);
  moved.Append(" again", 6);
  EXPECT_EQ(TextOf(moved), "hello again");
  EXPECT_EQ(moved.data(), place);
}

}  // namespace
}  // namespace stowra_test
