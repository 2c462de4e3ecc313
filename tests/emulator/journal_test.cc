// SPDX-License-Identifier: MIT
#include "emulator/console/journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace stowra_emulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;

JournalEntry EntryFor(const std::string& target) {
  JournalEntry entry;
  entry.target = target;
  return entry;
}

TEST(JournalTest, HandsOutEntriesAfterAnId) {
  Journal journal;
  for (const char* target : {"/a", "/b", "/c"}) journal.Add(EntryFor(target));
  const Journal::Entries all = journal.WaitForEntries(0, minutes(1));
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]->target, "/a");
  EXPECT_EQ(all[2]->id, journal.last_id());
  EXPECT_EQ(journal.WaitForEntries(all[1]->id, minutes(1)).size(), 1u);
  EXPECT_EQ(journal.WaitForEntries(all[2]->id, milliseconds(1)).size(), 0u);
}

TEST(JournalTest, KeepsTheLastTwoHundred) {
  Journal journal;
  for (int i = 0; i < 250; ++i) journal.Add(EntryFor(std::to_string(i)));
  const Journal::Entries all = journal.WaitForEntries(0, minutes(1));
  ASSERT_EQ(all.size(), 200u);
  EXPECT_EQ(all.front()->target, "50");
  EXPECT_EQ(all.back()->target, "249");
}

TEST(JournalTest, WaitEndsWithTheNextEntryOrTheClose) {
  Journal journal;
  std::thread adder([&journal] { journal.Add(EntryFor("/a")); });
  EXPECT_EQ(journal.WaitForEntries(0, minutes(1)).size(), 1u);
  adder.join();
  std::thread closer([&journal] { journal.Close(); });
  EXPECT_EQ(journal.WaitForEntries(1, minutes(1)).size(), 0u);
  closer.join();
  EXPECT_TRUE(journal.is_closed());
}

}  // namespace
}  // namespace stowra_emulator
