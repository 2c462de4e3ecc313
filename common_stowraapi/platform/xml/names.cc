#include "common_stowraapi/platform/xml/names.h"

#include <utility>

#include "common_stowraapi/platform/xml/keyed_hash.h"

namespace ovrant::xml {
namespace {

constexpr std::uint32_t kFirstSlotCount = 64;  // a power of two

std::uint32_t Hash(std::string_view name) {
  return static_cast<std::uint32_t>(utils::KeyedHash(name));
}

}  // namespace

NameTable::NameTable(utils::MemoryBudget& budget)
    : budget_(budget), texts_(budget), entries_(budget), slots_(kFirstSlotCount, kNoName) {}

// Makes `name` the latest of the successors.
void NameTable::Replace(Successors& successors, const char* name) {
  if (!Is(successors.other, name)) successors.other = Enter(name);
  std::swap(successors.latest, successors.other);
}

NameId NameTable::Find(std::string_view name) const { return slots_[FindSlot(name, Hash(name))]; }

NameId NameTable::Enter(std::string_view name) {
  const std::uint32_t hash = Hash(name);
  const std::uint32_t slot = FindSlot(name, hash);
  if (slots_[slot] != kNoName) return slots_[slot];
  if (entries_.size() >= slots_.size() / 2) {
    Grow();
    return Enter(name);
  }
  const std::string_view text = texts_.Copy(name);
  entries_.Append() = {text.data(), static_cast<std::uint32_t>(text.size()), hash};
  slots_[slot] = entries_.size() - 1;
  return slots_[slot];
}

// The slot that holds `name`, or the free one that is to hold it.
std::uint32_t NameTable::FindSlot(std::string_view name, std::uint32_t hash) const {
  const auto mask = static_cast<std::uint32_t>(slots_.size() - 1);
  std::uint32_t slot = hash & mask;
  for (; slots_[slot] != kNoName; slot = (slot + 1) & mask) {
    const Entry& entry = entries_[slots_[slot]];
    if (entry.hash == hash && std::string_view(entry.text, entry.size) == name) break;
  }
  return slot;
}

void NameTable::Grow() {
  const std::size_t count = 2 * slots_.size();
  budget_.Take(count * sizeof(NameId));
  std::vector<NameId> slots(count, kNoName);
  for (NameId id = 0; id < entries_.size(); ++id) {
    std::size_t slot = entries_[id].hash & (count - 1);
    while (slots[slot] != kNoName) slot = (slot + 1) & (count - 1);
    slots[slot] = id;
  }
  slots_.swap(slots);
  budget_.Return(slots.size() * sizeof(NameId));
}

}  // namespace ovrant::xml
