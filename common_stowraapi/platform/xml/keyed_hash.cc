#include "common_stowraapi/platform/xml/keyed_hash.h"

#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <random>

namespace ovrant::utils {
namespace {

struct Key {
  Key() {
    try {
      std::random_device source;
      low = std::uint64_t{source()} << 32 | source();
      high = std::uint64_t{source()} << 32 | source();
    } catch (const std::exception&) {
      // A system without a source of its own: the time and where the process has been loaded.
      low = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
      high = reinterpret_cast<std::uintptr_t>(this);
    }
  }

  std::uint64_t low;
  std::uint64_t high;
};

const Key& ProcessKey() {
  static const Key key;
  return key;
}

std::uint64_t RotateLeft(std::uint64_t value, int count) {
  return value << count | value >> (64 - count);
}

// The state between the words of the text.
class SipState {
 public:
  explicit SipState(const Key& key)
      : v0_(key.low ^ 0x736F6D6570736575u),
        v1_(key.high ^ 0x646F72616E646F6Du),
        v2_(key.low ^ 0x6C7967656E657261u),
        v3_(key.high ^ 0x7465646279746573u) {}

  void Add(std::uint64_t word) {
    v3_ ^= word;
    Round();
    v0_ ^= word;
  }

  std::uint64_t Finish() {
    v2_ ^= 0xFF;
    for (int i = 0; i < 3; ++i) Round();
    return v0_ ^ v1_ ^ v2_ ^ v3_;
  }

 private:
  void Round() {
    v0_ += v1_;
    v2_ += v3_;
    v1_ = RotateLeft(v1_, 13) ^ v0_;
    v3_ = RotateLeft(v3_, 16) ^ v2_;
    v0_ = RotateLeft(v0_, 32);
    v2_ += v1_;
    v0_ += v3_;
    v1_ = RotateLeft(v1_, 17) ^ v2_;
    v3_ = RotateLeft(v3_, 21) ^ v0_;
    v2_ = RotateLeft(v2_, 32);
  }

  std::uint64_t v0_, v1_, v2_, v3_;
};

// Eight bytes, in the machine's order.
std::uint64_t Word(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

// Up to seven bytes from the lowest one on, zeros behind the end.
std::uint64_t LastWord(std::string_view bytes) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    word |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  }
  return word;
}

}  // namespace

std::uint64_t KeyedHash(std::string_view text) {
  constexpr std::size_t kWordSize = 8;
  SipState state(ProcessKey());
  const std::size_t size = text.size();
  for (; text.size() >= kWordSize; text.remove_prefix(kWordSize)) {
    state.Add(Word(text.data()));
  }
  state.Add(LastWord(text) | std::uint64_t{size} << 56);
  return state.Finish();
}

}  // namespace ovrant::utils
