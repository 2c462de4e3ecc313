#include "common_stowraapi/platform/http/body_memory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>

namespace ovrant::internet {

namespace {

// Smaller pieces are cheap to get, and few larger ones would fit.
constexpr std::size_t kSmallestKept = std::size_t{32} << 10;
constexpr std::size_t kLargestKept = std::size_t{256} << 10;
constexpr std::size_t kMostKept = 64;

// A kept piece is used for a body that fills at least this part of it: one half.
constexpr std::size_t kLeastFilled = 2;

// Stored before the bytes of a piece.
struct alignas(std::max_align_t) Head {
  std::size_t capacity;
};

Head* HeadOf(unsigned char* piece) { return reinterpret_cast<Head*>(piece) - 1; }

unsigned char* Begin(void* memory, std::size_t capacity) {
  if (memory == nullptr) return nullptr;
  auto* const head = static_cast<Head*>(memory);
  head->capacity = capacity;
  return reinterpret_cast<unsigned char*>(head + 1);
}

std::size_t SizeWithHead(std::size_t capacity) {
  return capacity <= SIZE_MAX - sizeof(Head) ? sizeof(Head) + capacity : SIZE_MAX;
}

bool IsKeptSize(std::size_t capacity) {
  return capacity >= kSmallestKept && capacity <= kLargestKept;
}

class KeptPieces {
 public:
  // Never destroyed, so static destructors can use it. Needs no memory of its own, because freeing
  // must not fail.
  static KeptPieces& Instance() {
    alignas(KeptPieces) static std::byte place[sizeof(KeptPieces)];
    static auto* const pieces = new (place) KeptPieces;
    return *pieces;
  }

  unsigned char* Take(std::size_t capacity) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (std::size_t i = count_; i > 0; --i) {
      const std::size_t kept = BodyMemory::CapacityOf(pieces_[i - 1]);
      if (kept < capacity || kept / kLeastFilled > capacity) continue;
      std::swap(pieces_[i - 1], pieces_[--count_]);
      return pieces_[count_];
    }
    return nullptr;
  }

  bool Keep(unsigned char* piece) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!keeps_ || count_ == kMostKept) return false;
    pieces_[count_++] = piece;
    return true;
  }

  void SetKeeps(bool keeps) {
    const std::lock_guard<std::mutex> lock(mutex_);
    keeps_ = keeps;
    if (keeps_) return;
    while (count_ > 0) std::free(HeadOf(pieces_[--count_]));
  }

 private:
  std::mutex mutex_;
  bool keeps_ = false;
  std::size_t count_ = 0;
  std::array<unsigned char*, kMostKept> pieces_{};
};

}  // namespace

unsigned char* BodyMemory::Allocate(std::size_t capacity) {
  if (IsKeptSize(capacity)) {
    if (unsigned char* const kept = KeptPieces::Instance().Take(capacity)) return kept;
  }
  return Begin(std::malloc(SizeWithHead(capacity)), capacity);
}

unsigned char* BodyMemory::Enlarge(unsigned char* piece, std::size_t capacity) {
  return Begin(std::realloc(HeadOf(piece), SizeWithHead(capacity)), capacity);
}

void BodyMemory::Free(unsigned char* piece) {
  if (piece == nullptr) return;
  if (IsKeptSize(CapacityOf(piece)) && KeptPieces::Instance().Keep(piece)) return;
  std::free(HeadOf(piece));
}

std::size_t BodyMemory::CapacityOf(const unsigned char* piece) {
  return HeadOf(const_cast<unsigned char*>(piece))->capacity;
}

void BodyMemory::KeepFreed(bool keep) { KeptPieces::Instance().SetKeeps(keep); }

}  // namespace ovrant::internet
