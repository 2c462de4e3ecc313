// SPDX-License-Identifier: MIT
// Types, getters and setters of one node.

#include "common_stowraapi/json/value.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "tests/json/text.h"

namespace stowra_test {
namespace {

constexpr long long kInt64Min = std::numeric_limits<long long>::min();
constexpr unsigned long long kUint64Max = std::numeric_limits<unsigned long long>::max();

// The type tests that `value` passes.
std::string Types(const Value& value) {
  std::string types;
  const auto add = [&types](bool passes, const char* name) {
    if (passes) types += (types.empty() ? "" : " ") + std::string(name);
  };
  add(value.IsNull(), "Null");
  add(value.IsFalse(), "False");
  add(value.IsTrue(), "True");
  add(value.IsBool(), "Bool");
  add(value.IsObject(), "Object");
  add(value.IsArray(), "Array");
  add(value.IsString(), "String");
  add(value.IsNumber(), "Number");
  add(value.IsInt(), "Int");
  add(value.IsUint(), "Uint");
  add(value.IsInt64(), "Int64");
  add(value.IsUint64(), "Uint64");
  add(value.IsDouble(), "Double");
  return types;
}

// Applies each setter to a node with other content.
template <typename Setter, typename Content>
std::string TypesAfter(Setter setter, Content content) {
  Document document;
  Value value = document.MakeValue();
  value.SetString("something else that is long enough to live in the pool");
  (value.*setter)(content);
  return Types(value);
}

TEST(ValueType, IsThatOfTheText) {
  const std::pair<const char*, const char*> rows[] = {
      {"Null", "null"},
      {"False Bool", "false"},
      {"True Bool", "true"},
      {"Object", "{}"},
      {"Array", "[]"},
      {"String", "\"\"|\"a string that does not fit into the node\""},
      // A number's type tells what can hold it.
      {"Number Int Uint Int64 Uint64", "0|-0|2147483647"},
      {"Number Int Int64", "-1|-2147483648"},
      {"Number Uint Int64 Uint64", "2147483648|4294967295"},
      {"Number Int64", "-2147483649|-9223372036854775808"},
      {"Number Int64 Uint64", "4294967296|9223372036854775807"},
      {"Number Uint64", "9223372036854775808|18446744073709551615"},
      {"Number Double", "18446744073709551616|-9223372036854775809|1.0|1e0"}};
  for (const auto& [types, texts] : rows) {
    for (const std::string& json : Split(texts)) {
      EXPECT_EQ(Types(ValueDocument(json).value()), types) << json;
    }
  }
}

TEST(ValueType, OfASetNumberTellsWhatCanHoldIt) {
  EXPECT_EQ(TypesAfter(&Value::SetInt, 0), "Number Int Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt, -1), "Number Int Int64");
  EXPECT_EQ(TypesAfter(&Value::SetUint, 2147483647U), "Number Int Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetUint, 2147483648U), "Number Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, 2147483647LL), "Number Int Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, 2147483648LL), "Number Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, 4294967295LL), "Number Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, 4294967296LL), "Number Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, -2147483648LL), "Number Int Int64");
  EXPECT_EQ(TypesAfter(&Value::SetInt64, -2147483649LL), "Number Int64");
  EXPECT_EQ(TypesAfter(&Value::SetUint64, 2147483647ULL), "Number Int Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetUint64, 4294967295ULL), "Number Uint Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetUint64, 4294967296ULL), "Number Int64 Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetUint64, 9223372036854775808ULL), "Number Uint64");
  EXPECT_EQ(TypesAfter(&Value::SetDouble, 1.0), "Number Double");
}

TEST(ValueSetter, ReplacesWhateverTheNodeHeld) {
  EXPECT_EQ(TypesAfter(&Value::SetBool, true), "True Bool");
  EXPECT_EQ(TypesAfter(&Value::SetBool, false), "False Bool");
  ValueDocument document("[1,{\"a\":2}]");
  Value& value = document.value();
  value[1].SetNull();
  EXPECT_EQ(document.written(), "[1,null]");
  value[1].SetArray();
  EXPECT_EQ(document.written(), "[1,[]]");
  value[1].SetObject();
  EXPECT_EQ(document.written(), "[1,{}]");
  value[1].SetString("text");
  EXPECT_EQ(document.written(), "[1,\"text\"]");
  value.SetInt64(kInt64Min);
  EXPECT_EQ(document.written(), "-9223372036854775808");
}

TEST(ValueSetter, StoresItsOwnCopyOfTheText) {
  Document document;
  Value value = document.MakeValue();
  ovrant::utils::ovrant_ustring text("a text that is too long to be kept inside a node");
  value.SetString(text);
  text.clear();
  EXPECT_EQ(value.GetString().utf8(), "a text that is too long to be kept inside a node");
}

TEST(ValueSetter, StoresATextUpToItsFirstNul) {
  Document document;
  Value value = document.MakeValue();
  value.SetString(Text(std::string("ab\0cd", 5)));
  document.AddMember("s", value);
  EXPECT_EQ(Written(document), "{\"s\":\"ab\"}");
}

TEST(ValueSetter, DoesNothingWithoutANode) {
  Value empty;
  empty.SetNull();
  empty.SetObject();
  empty.SetArray();
  empty.SetBool(true);
  empty.SetInt(1);
  empty.SetUint(1);
  empty.SetInt64(1);
  empty.SetUint64(1);
  empty.SetDouble(1);
  empty.SetString("text");
  empty.PushBack(Value());
  empty.Clear();
  empty.AddMember("name", Value());
  EXPECT_EQ(Types(empty), "Null");
}

TEST(ValueGetter, ReadsIntegersAsStored) {
  ValueDocument numbers("[-7,4294967295,-9223372036854775808,18446744073709551615]");
  EXPECT_EQ(numbers[0].GetInt(), -7);
  EXPECT_EQ(numbers[0].GetInt64(), -7);
  EXPECT_EQ(numbers[1].GetUint(), 4294967295U);
  EXPECT_EQ(numbers[1].GetInt64(), 4294967295LL);
  EXPECT_EQ(numbers[2].GetInt64(), kInt64Min);
  EXPECT_EQ(numbers[3].GetUint64(), kUint64Max);
}

TEST(ValueGetter, ReadsTheLowestBitsOfAnIntegerThatDoesNotFit) {
  ValueDocument numbers("[4294967295,4294967303,-1,-4294967289,18446744073709551615]");
  EXPECT_EQ(numbers[0].GetInt(), -1);
  EXPECT_EQ(numbers[1].GetInt(), 7);
  EXPECT_EQ(numbers[1].GetUint(), 7U);
  EXPECT_EQ(numbers[2].GetUint(), 4294967295U);
  EXPECT_EQ(numbers[2].GetUint64(), kUint64Max);
  EXPECT_EQ(numbers[3].GetInt(), 7);
  EXPECT_EQ(numbers[4].GetInt64(), -1);
}

// The results of the integer getters for a double.
struct Cut {
  double value;
  int as_int;
  unsigned int as_uint;
  long long as_int64;
  unsigned long long as_uint64;
};

TEST(ValueGetter, CutsADoubleTowardZeroAndGivesZeroWhereThatDoesNotFit) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Cut cuts[] = {
      {2.9, 2, 2, 2, 2},
      {-0.9, 0, 0, 0, 0},
      {-2.9, -2, 0, -2, 0},
      {2147483647.5, 2147483647, 2147483647, 2147483647, 2147483647},
      {2147483648.0, 0, 2147483648, 2147483648, 2147483648},
      {-2147483648.5, -2147483647 - 1, 0, -2147483648, 0},
      {-2147483649.0, 0, 0, -2147483649, 0},
      {4294967295.5, 0, 4294967295, 4294967295, 4294967295},
      {4294967296.0, 0, 0, 4294967296, 4294967296},
      {9223372036854774784.0, 0, 0, 9223372036854774784, 9223372036854774784},
      {9223372036854775808.0, 0, 0, 0, 9223372036854775808ULL},
      {-9223372036854775808.0, 0, 0, kInt64Min, 0},
      {18446744073709549568.0, 0, 0, 0, 18446744073709549568ULL},
      {18446744073709551616.0, 0, 0, 0, 0},
      {infinity, 0, 0, 0, 0},
      {-infinity, 0, 0, 0, 0},
      {std::numeric_limits<double>::quiet_NaN(), 0, 0, 0, 0},
  };
  Document document;
  Value number = document.MakeValue();
  for (const Cut& cut : cuts) {
    SCOPED_TRACE(cut.value);
    number.SetDouble(cut.value);
    EXPECT_EQ(number.GetInt(), cut.as_int);
    EXPECT_EQ(number.GetUint(), cut.as_uint);
    EXPECT_EQ(number.GetInt64(), cut.as_int64);
    EXPECT_EQ(number.GetUint64(), cut.as_uint64);
  }
}

TEST(ValueGetter, ReadsAnyNumberAsDouble) {
  ValueDocument numbers("[-3,4294967295,-9223372036854775808,18446744073709551615,0.1]");
  EXPECT_EQ(numbers[0].GetDouble(), -3.0);
  EXPECT_EQ(numbers[1].GetDouble(), 4294967295.0);
  EXPECT_EQ(numbers[2].GetDouble(), -9223372036854775808.0);
  EXPECT_EQ(numbers[3].GetDouble(), 18446744073709551616.0);
  EXPECT_EQ(numbers[4].GetDouble(), 0.1);
}

TEST(ValueGetter, GivesTrueForTheLiteralTrueAlone) {
  ValueDocument values("[true,false,1,\"true\",null,[true],{\"true\":true}]");
  EXPECT_TRUE(values[0].GetBool());
  for (int i = 1; i < 7; ++i) EXPECT_FALSE(values[i].GetBool()) << i;
}

TEST(ValueGetter, ReadsTextUpToItsFirstNul) {
  ValueDocument texts("[\"\",\"ab\\u0000cd\",\"\\u00e9\\ud83d\\ude00\",\"\\u0000\"]");
  EXPECT_EQ(texts[0].GetString().utf8(), "");
  EXPECT_EQ(texts[1].GetString().utf8(), "ab");
  EXPECT_EQ(texts[2].GetString().utf8(), "\u00e9\U0001F600");
  EXPECT_EQ(texts[2].GetString().length(), 3U);
  EXPECT_EQ(texts[3].GetString().utf8(), "");
}

TEST(ValueGetter, CountsElementsAndMembers) {
  ValueDocument values("[[],[1,2,3],{},{\"a\":1,\"a\":2},\"four\",5]");
  EXPECT_EQ(values.value().Size(), 6U);
  const unsigned int sizes[] = {0, 3, 0, 2, 0, 0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(values[i].Size(), sizes[i]) << i;
}

void ExpectNoNumberIn(const Value& value) {
  EXPECT_EQ(value.GetInt(), 0);
  EXPECT_EQ(value.GetUint(), 0U);
  EXPECT_EQ(value.GetInt64(), 0);
  EXPECT_EQ(value.GetUint64(), 0U);
  EXPECT_EQ(value.GetDouble(), 0.0);
}

// Expects zero, false, the empty text or a null handle from every operation.
void ExpectNothingIn(const Value& value) {
  ExpectNoNumberIn(value);
  EXPECT_FALSE(value.GetBool());
  EXPECT_TRUE(value.GetString().empty());
  EXPECT_EQ(value.Size(), 0U);
  EXPECT_FALSE(value.HasMember("a"));
  EXPECT_TRUE(value["a"].IsNull());
  EXPECT_TRUE(value[0].IsNull());
}

TEST(ValueGetter, FindsNothingInANullOrEmptyHandle) {
  ExpectNothingIn(Value());
  for (const char* json : {"null", "false", "[]", "{}"}) {
    SCOPED_TRACE(json);
    ExpectNothingIn(ValueDocument(json).value());
  }
}

TEST(ValueGetter, FindsNothingOfAnotherType) {
  ValueDocument values("[\"12\",[1],{\"a\":1},7,true]");
  for (const int i : {0, 1, 2, 4}) {
    SCOPED_TRACE(i);
    ExpectNoNumberIn(values[i]);
  }
  for (const int i : {1, 2, 3, 4}) EXPECT_TRUE(values[i].GetString().empty()) << i;
  for (const int i : {0, 1, 3, 4}) EXPECT_FALSE(values[i].HasMember("a")) << i;
}

}  // namespace
}  // namespace stowra_test
