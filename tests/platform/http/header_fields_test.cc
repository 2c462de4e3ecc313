// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/header_fields.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace stowra_test {
namespace {

using ovrant::internet::HeaderFields;

HeaderFields FieldsOf(std::initializer_list<const char*> lines) {
  HeaderFields fields;
  for (const char* line : lines) fields.AddLine(line);
  return fields;
}

std::string ValueOf(const HeaderFields& fields, const char* name) {
  const auto map = fields.ToMap();
  const auto found = map.find(name);
  return found == map.end() ? "(none)" : found->second.utf8();
}

TEST(HeaderFields, AreEmptyAtFirst) {
  const HeaderFields fields;
  EXPECT_TRUE(fields.empty());
  EXPECT_TRUE(fields.ToMap().empty());
}

TEST(HeaderFields, KeepNamesAndValuesAsTheyCame) {
  const HeaderFields fields = FieldsOf({"X-One: 1\r\n", "x-one \t:a: b \r\n", "X-Empty:\n"});
  EXPECT_FALSE(fields.empty());
  EXPECT_EQ(fields.ToMap().size(), 3U);
  EXPECT_EQ(ValueOf(fields, "X-One"), "1");
  EXPECT_EQ(ValueOf(fields, "x-one"), "a: b");
  EXPECT_EQ(ValueOf(fields, "X-Empty"), "");
}

TEST(HeaderFields, LineEndMayBeMissing) {
  const HeaderFields fields = FieldsOf({"X-One: 1", "X-Two: 2"});
  EXPECT_EQ(ValueOf(fields, "X-One"), "1");
  EXPECT_EQ(ValueOf(fields, "X-Two"), "2");
}

TEST(HeaderFields, JoinRepeatedValues) {
  EXPECT_EQ(ValueOf(FieldsOf({"X-A:\r\n", "X-A: 1\r\n", "X-A: 2\r\n"}), "X-A"), "1, 2");
}

TEST(HeaderFields, ContinueTheFieldBefore) {
  const HeaderFields fields = FieldsOf({" stray: x\r\n", "X-A: one\r\n", " two:\r\n", "garbage\r\n",
                                        "\t three \r\n", "X-B:\r\n", " four\r\n"});
  EXPECT_EQ(fields.ToMap().size(), 2U);
  EXPECT_EQ(ValueOf(fields, "X-A"), "one two: three");
  EXPECT_EQ(ValueOf(fields, "X-B"), "four");
}

TEST(HeaderFields, AcceptBytesThatAreNotUtf8) {
  EXPECT_EQ(ValueOf(FieldsOf({"X-A: caf\xE9\r\n"}), "X-A"), "caf\xEF\xBF\xBD");
}

}  // namespace
}  // namespace stowra_test
