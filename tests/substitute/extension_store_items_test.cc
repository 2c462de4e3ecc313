// SPDX-License-Identifier: MIT
// The records that ExtensionStoreStatus reads from its response.

#include <map>
#include <string>
#include <vector>

#include "tests/services/fields.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::utils::ovrant_ustring;
using stowra_test::Fields;
using testing::ElementsAre;
using testing::IsEmpty;

using ItemMap = std::map<ovrant_ustring, ExtensionStoreItem>;

class ExtensionStoreItemsTest : public testing::Test {
 protected:
  ItemMap ItemsOf(const std::string& response) {
    ScriptTransfer(Reply(200, response));
    EXPECT_TRUE(status.SynchronousStatus());
    return status.GetItemMapFromResponse();
  }

  // The ids of an answer with these extensions.
  std::vector<std::string> KeysOf(const std::string& extensions) {
    std::vector<std::string> keys;
    for (const auto& item : ItemsOf(R"({"extensions":)" + extensions + "}")) {
      keys.push_back(item.first.utf8());
    }
    return keys;
  }

  // The record of an answer's only extension, whose id is "x".
  ExtensionStoreItem ItemWith(const std::string& member) {
    const ItemMap items = ItemsOf(R"({"extensions":[{"id":"x",)" + member + "}]}");
    EXPECT_EQ(items.size(), 1U) << member;
    const auto found = items.find("x");
    EXPECT_NE(found, items.end()) << member;
    return found == items.end() ? ExtensionStoreItem() : found->second;
  }

  ExtensionStoreStatus status;
};

TEST_F(ExtensionStoreItemsTest, ItemHasItsDefaults) {
  EXPECT_EQ(Fields(ExtensionStoreItem()), std::make_tuple("", "", 0.0F, "", false, false, false));
}

TEST_F(ExtensionStoreItemsTest, ReadsEveryMember) {
  const ExtensionStoreItem item =
      ItemWith(R"("version_uuid":"u","version":"2.5","file_url":"f","update":true,)"
               R"("remote_kill":true,"enabled":1)");
  EXPECT_EQ(Fields(item), std::make_tuple("x", "u", 2.5F, "f", true, true, true));
}

TEST_F(ExtensionStoreItemsTest, NoReadableResponseGivesNoItems) {
  for (const char* const response :
       {"", " ", "no JSON", "{", "{}", "[]", "null", R"({"extensions":[]})", R"({"extensions":{}})",
        R"({"extensions":{"id":"x"}})", R"({"extensions":null})", R"({"extensions":"x"})",
        R"({"extensions":1})", R"({"Extensions":[{"id":"x"}]})", R"([{"id":"x"}])",
        R"([{"extensions":[{"id":"x"}]}])", R"({"extensions":[{"id":"x"}]} y)",
        R"({"extensions":["x",1,null,true,[{"id":"x"}]]})"}) {
    EXPECT_THAT(ItemsOf(response), IsEmpty()) << response;
  }
}

TEST_F(ExtensionStoreItemsTest, ElementsThatAreNoObjectsAreSkipped) {
  EXPECT_THAT(KeysOf(R"(["x",{"id":"b"},null,{"id":"a"},7])"), ElementsAre("a", "b"));
}

TEST_F(ExtensionStoreItemsTest, VersionIsAStringThatSpellsANumber) {
  EXPECT_EQ(ItemWith(R"("version":"2.5")").version, 2.5F);
  EXPECT_EQ(ItemWith(R"("version":"-1")").version, -1.0F);
  for (const char* const value : {R"("")", R"("new")", "2.5", "2", "null"}) {
    EXPECT_EQ(ItemWith(std::string(R"("version":)") + value).version, 0.0F) << value;
  }
}

TEST_F(ExtensionStoreItemsTest, EnabledIsTheIntegerOneOnly) {
  EXPECT_TRUE(ItemWith(R"("enabled":1)").enabled);
  for (const char* const value :
       {"0", "2", "-1", "true", "false", "1.0", "\"1\"", "[1]", "null", "4294967297", "257"}) {
    EXPECT_FALSE(ItemWith(std::string(R"("enabled":)") + value).enabled) << value;
  }
}

TEST_F(ExtensionStoreItemsTest, UpdateAndRemoteKillAreBooleans) {
  EXPECT_TRUE(ItemWith(R"("update":true)").update);
  EXPECT_FALSE(ItemWith(R"("update":true)").remote_kill);
  EXPECT_TRUE(ItemWith(R"("remote_kill":true)").remote_kill);
  EXPECT_FALSE(ItemWith(R"("remote_kill":true)").update);
  for (const char* const value : {"false", "1", "\"true\"", "null", "[true]"}) {
    EXPECT_FALSE(ItemWith(std::string(R"("update":)") + value).update) << value;
    EXPECT_FALSE(ItemWith(std::string(R"("remote_kill":)") + value).remote_kill) << value;
  }
}

TEST_F(ExtensionStoreItemsTest, TextsAreStrings) {
  EXPECT_EQ(ItemWith(R"("version_uuid":"\u00e9")").version_uuid, "\xC3\xA9");
  EXPECT_EQ(ItemWith(R"("file_url":"f")").file_url, "f");
  for (const char* const value : {"1", "true", "null", "[\"x\"]", "{}"}) {
    EXPECT_TRUE(ItemWith(std::string(R"("version_uuid":)") + value).version_uuid.empty()) << value;
    EXPECT_TRUE(ItemWith(std::string(R"("file_url":)") + value).file_url.empty()) << value;
  }
}

TEST_F(ExtensionStoreItemsTest, TheLastElementOfOneIdReplacesAllFields) {
  const ItemMap items =
      ItemsOf(R"({"extensions":[{"id":"x","version_uuid":"u","version":"2.5","file_url":"f",)"
              R"("update":true,"remote_kill":true,"enabled":1},{"id":"y"},)"
              R"({"id":"x","version":"3"}]})");
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(Fields(items.at("x")), std::make_tuple("x", "", 3.0F, "", false, false, false));
}

TEST_F(ExtensionStoreItemsTest, ElementsWithoutAStringIdShareTheEmptyKey) {
  const ItemMap items =
      ItemsOf(R"({"extensions":[{"file_url":"1"},{"id":7,"file_url":"2"},{"id":"","file_url":"3"},)"
              R"({"id":null,"file_url":"4"},{"id":"x"}]})");
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items.at("").file_url, "4");
  EXPECT_TRUE(items.at("").id.empty());
  EXPECT_EQ(items.at("x").id, "x");
}

TEST_F(ExtensionStoreItemsTest, IdsEndAtAnEscapedNul) {
  EXPECT_THAT(KeysOf(R"([{"id":"x\u00001"},{"id":"x\u00002"}])"), ElementsAre("x"));
}

TEST_F(ExtensionStoreItemsTest, FirstOfRepeatedMembersCounts) {
  const ItemMap items = ItemsOf(
      R"({"extensions":[{"id":"a","id":"b","enabled":1,"enabled":0}],"extensions":[{"id":"c"}]})");
  ASSERT_EQ(items.size(), 1U);
  EXPECT_TRUE(items.at("a").enabled);
}

TEST_F(ExtensionStoreItemsTest, KeysAreOrderedByCodeUnits) {
  EXPECT_THAT(KeysOf(R"([{"id":"b"},{"id":"a"},{"id":"B"},{"id":"\uffee"},{"id":"\ud83d\ude00"}])"),
              ElementsAre("B", "a", "b", "\xF0\x9F\x98\x80", "\xEF\xBF\xAE"));
}

}  // namespace
}  // namespace stowra_substitute
