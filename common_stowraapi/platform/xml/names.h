// The names in an XML document.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_NAMES_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_NAMES_H_

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/xml/block_array.h"
#include "common_stowraapi/platform/xml/byte_arena.h"
#include "common_stowraapi/platform/xml/memory_budget.h"

namespace ovrant::xml {

using NameId = std::uint32_t;

inline constexpr NameId kNoName = 0xFFFFFFFF;

// Gives each distinct name (UTF-8) a number, from 0. Takes its memory from a budget, which must
// outlive it.
class NameTable {
 public:
  explicit NameTable(utils::MemoryBudget& budget);

  // The number of `name`, which is entered if it is new. Fast where names follow each other in an
  // order in which they did before. std::bad_alloc leaves the table as it was.
  NameId Intern(const char* name) {
    Successors& successors = successors_[(32 * second_last_ + last_) % successors_.size()];
    if (!Is(successors.latest, name)) Replace(successors, name);
    second_last_ = last_;
    last_ = successors.latest;
    return last_;
  }

  // kNoName if it has not been entered.
  NameId Find(std::string_view name) const;

 private:
  struct Entry {
    const char* text;
    std::uint32_t size;
    std::uint32_t hash;
  };

  // The last two names lead to the next: the one that came the last time, or the one before that.
  struct Successors {
    NameId latest = kNoName;
    NameId other = kNoName;
  };

  bool Is(NameId id, const char* name) const {
    return id != kNoName && std::strcmp(entries_[id].text, name) == 0;
  }
  void Replace(Successors& successors, const char* name);
  NameId Enter(std::string_view name);
  std::uint32_t FindSlot(std::string_view name, std::uint32_t hash) const;
  void Grow();

  utils::MemoryBudget& budget_;
  utils::ByteArena texts_;
  utils::BlockArray<Entry> entries_;
  std::vector<NameId> slots_;  // a hash table with open addressing, at most half full

  NameId last_ = kNoName;
  NameId second_last_ = kNoName;
  std::array<Successors, 1024> successors_;
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_NAMES_H_
