// RapidJSON's types as this room uses them. Only the .cc files beside this header include it, and
// nothing else includes RapidJSON.

#ifndef COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_
#define COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

// Strings are scanned by string_scan.h: what RapidJSON has for that lets some control characters
// pass.
#undef RAPIDJSON_SSE2
#undef RAPIDJSON_SSE42
#undef RAPIDJSON_NEON

#include <rapidjson/document.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace ovrant::json {

// Takes memory from malloc, as RapidJSON's own CrtAllocator does, but throws std::bad_alloc where
// that returns null: RapidJSON does not check. A pool made with one may be used with the other.
class ThrowingAllocator {
 public:
  static constexpr bool kNeedFree = true;

  void* Malloc(std::size_t size) { return size == 0 ? nullptr : Checked(std::malloc(size)); }

  void* Realloc(void* block, std::size_t /*old_size*/, std::size_t new_size) {
    if (new_size != 0) return Checked(std::realloc(block, new_size));
    std::free(block);
    return nullptr;
  }

  static void Free(void* block) { std::free(block); }

 private:
  static void* Checked(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
  }
};

using Encoding = rapidjson::UTF8<char>;
using Pool = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;
using Node = rapidjson::GenericValue<Encoding, Pool>;
using ParsedText = rapidjson::GenericDocument<Encoding, Pool, ThrowingAllocator>;
using Input = rapidjson::GenericStringStream<Encoding>;
using Output = rapidjson::GenericStringBuffer<Encoding, ThrowingAllocator>;
using OutputWriter = rapidjson::Writer<Output, Encoding, Encoding, ThrowingAllocator>;

// Lengths and counts have 32 bits. A text has one byte less, for its NUL is counted too.
using rapidjson::SizeType;
constexpr std::size_t kMaxTextLength = std::numeric_limits<SizeType>::max() - 1;

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_
