// SPDX-License-Identifier: MIT
// A host may copy, move and keep the records that the services fill.

#include <gtest/gtest.h>

#include <utility>

#include "tests/services/fields.h"

namespace stowra_test {
namespace {

constexpr char kLong[] = "a text that is far too long to be kept inside a string object";

// `record` has another value than the default in each field.
template <typename Record>
void ExpectCopiesAndMoves(Record record) {
  const auto fields = Fields(record);
  ASSERT_NE(Fields(Record()), fields);
  const Record copy(record);
  Record assigned;
  assigned = record;
  record = Record();
  EXPECT_EQ(Fields(record), Fields(Record()));
  EXPECT_EQ(Fields(copy), fields);
  EXPECT_EQ(Fields(assigned), fields);

  Record moved(std::move(assigned));
  EXPECT_EQ(Fields(moved), fields);
  assigned = std::move(moved);
  EXPECT_EQ(Fields(assigned), fields);
}

TEST(RecordsTest, AMessageIsCopiedAndMovedWhole) {
  ovrant::webservices::MessageData record;
  record.id = 7;
  record.max_shows = 2;
  record.width = 3;
  record.height = 4;
  record.title = "Zoë";
  record.url = kLong;
  ExpectCopiesAndMoves(record);
}

TEST(RecordsTest, ADataFileIsCopiedAndMovedWhole) {
  ovrant::webservices::DataFileData record;
  record.version = 7;
  record.filename = "Zoë";
  record.url = kLong;
  ExpectCopiesAndMoves(record);
}

TEST(RecordsTest, AnExtensionStoreItemIsCopiedAndMovedWhole) {
  ovrant::extensionstoreapi::ExtensionStoreItem record;
  record.id = "Zoë";
  record.version_uuid = "uuid";
  record.version = 2.5F;
  record.file_url = kLong;
  record.update = true;
  record.remote_kill = true;
  record.enabled = true;
  ExpectCopiesAndMoves(record);
}

}  // namespace
}  // namespace stowra_test
