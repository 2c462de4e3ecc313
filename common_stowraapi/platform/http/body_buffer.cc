// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/body_buffer.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace ovrant::internet {

namespace {

constexpr std::size_t kSmallestCapacity = 4096;

}  // namespace

void BodyBuffer::Append(const void* data, std::size_t length) {
  if (length == 0) return;
  std::memcpy(Room(length), data, length);
  Grow(length);
}

unsigned char* BodyBuffer::Room(std::size_t length) {
  const std::size_t needed = size_ + length;
  if (needed > capacity_) Reserve(std::max({needed, capacity_ * 2, kSmallestCapacity}));
  return data_.get() + size_;
}

void BodyBuffer::Reserve(std::size_t capacity) {
  if (capacity <= capacity_) return;
  void* const moved = std::realloc(data_.get(), capacity);
  if (moved == nullptr) throw std::bad_alloc();
  static_cast<void>(data_.release());
  data_.reset(static_cast<unsigned char*>(moved));
  capacity_ = capacity;
}

void BodyBuffer::Clear() {
  data_.reset();
  size_ = 0;
  capacity_ = 0;
}

unsigned char* BodyBuffer::Release() {
  if (size_ == 0) Clear();
  size_ = 0;
  capacity_ = 0;
  return data_.release();
}

}  // namespace ovrant::internet
