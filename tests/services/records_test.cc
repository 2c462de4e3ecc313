// SPDX-License-Identifier: MIT
// A host may copy, move and keep the records that the services fill.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

#include "tests/services/fields.h"

namespace stowra_test {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;

constexpr char kLong[] = "a text that is far too long to be kept inside a string object";

void Fill(MessageData& record) {
  record.id = 7;
  record.max_shows = 2;
  record.width = 3;
  record.height = 4;
  record.title = "Zoë";
  record.url = kLong;
}

void Fill(DataFileData& record) {
  record.version = 7;
  record.filename = "Zoë";
  record.url = kLong;
}

void Fill(ExtensionStoreItem& record) {
  record.id = "Zoë";
  record.version_uuid = "uuid";
  record.version = 2.5F;
  record.file_url = kLong;
  record.update = true;
  record.remote_kill = true;
  record.enabled = true;
}

template <typename Record>
class RecordsTest : public testing::Test {
 protected:
  RecordsTest() { Fill(record); }

  Record record;
};

struct RecordName {
  template <typename Record>
  static std::string GetName(int /*index*/) {
    if (std::is_same_v<Record, MessageData>) return "MessageData";
    return std::is_same_v<Record, DataFileData> ? "DataFileData" : "ExtensionStoreItem";
  }
};

using Records = testing::Types<MessageData, DataFileData, ExtensionStoreItem>;
TYPED_TEST_SUITE(RecordsTest, Records, RecordName);

TYPED_TEST(RecordsTest, ACopyHasEveryFieldAndOutlivesTheOriginal) {
  const auto fields = Fields(this->record);
  ASSERT_NE(Fields(TypeParam()), fields);
  const TypeParam copy(this->record);
  TypeParam assigned;
  assigned = this->record;
  this->record = TypeParam();
  EXPECT_EQ(Fields(this->record), Fields(TypeParam()));
  EXPECT_EQ(Fields(copy), fields);
  EXPECT_EQ(Fields(assigned), fields);
}

TYPED_TEST(RecordsTest, AMoveTakesEveryField) {
  const auto fields = Fields(this->record);
  TypeParam moved(std::move(this->record));
  EXPECT_EQ(Fields(moved), fields);
  TypeParam assigned;
  assigned = std::move(moved);
  EXPECT_EQ(Fields(assigned), fields);
}

}  // namespace
}  // namespace stowra_test
