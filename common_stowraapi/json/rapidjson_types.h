// SPDX-License-Identifier: MIT
// The RapidJSON types of this room. Only the .cc files beside this header include it, and nothing
// else includes RapidJSON.

#ifndef COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_
#define COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

// string_scan.h scans strings instead: RapidJSON's own vector code accepts the control characters
// 0x1A to 0x1F.
#undef RAPIDJSON_SSE2
#undef RAPIDJSON_SSE42
#undef RAPIDJSON_NEON

#include <rapidjson/document.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

static_assert(RAPIDJSON_MAJOR_VERSION == 1 && RAPIDJSON_MINOR_VERSION == 1 &&
                  RAPIDJSON_PATCH_VERSION == 0,
              "tree_reader.cc and tree_writer.cc specialise members of RapidJSON 1.1.0: check that "
              "this version still calls them, then change this assertion");

namespace ovrant::json {

// Takes memory from malloc, as RapidJSON's own CrtAllocator does, but throws std::bad_alloc where
// that returns null: RapidJSON does not check. A pool made with one may be used with the other.
// RapidJSON asks for no empty block.
class ThrowingAllocator {
 public:
  static constexpr bool kNeedFree = true;

  void* Malloc(std::size_t size) { return Checked(std::malloc(size)); }
  void* Realloc(void* block, std::size_t /*old_size*/, std::size_t new_size) {
    return Checked(std::realloc(block, new_size));
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

// Lengths and counts have 32 bits. The NUL after a text counts, too.
using rapidjson::SizeType;
constexpr std::size_t kMaxTextLength = std::numeric_limits<SizeType>::max() - 1;

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_RAPIDJSON_TYPES_H_
