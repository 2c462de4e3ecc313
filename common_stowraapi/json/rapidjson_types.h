// RapidJSON's types as this room uses them. Only the .cc files beside this header include it, and
// nothing else includes RapidJSON.

#ifndef COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_
#define COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_

#include <algorithm>
#include <cstddef>
#include <cstring>
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

// Where all memory comes from. RapidJSON never looks whether it was given any, so an allocator
// that returns null, as its own does, is not enough.
class ThrowingAllocator {
 public:
  static constexpr bool kNeedFree = true;

  void* Malloc(std::size_t size) { return size == 0 ? nullptr : ::operator new(size); }

  void* Realloc(void* block, std::size_t old_size, std::size_t new_size) {
    void* const moved = Malloc(new_size);
    if (block != nullptr && moved != nullptr) {
      std::memcpy(moved, block, std::min(old_size, new_size));
    }
    Free(block);
    return moved;
  }

  static void Free(void* block) { ::operator delete(block); }
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
