// SPDX-License-Identifier: MIT
// Load and ToString.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/json/tree_reader.h"
#include "tests/json/text.h"

namespace stowra_test {
namespace {

TEST(Load, NeedsAnObjectOrArrayAsRoot) {
  EXPECT_TRUE(Loads("{}"));
  EXPECT_TRUE(Loads("[]"));
  for (const char* text : {"", " ", " \t\r\n", "1", "-1.5", "\"text\"", "true", "false", "null"}) {
    EXPECT_FALSE(Loads(text)) << text;
  }
}

TEST(Load, TakesWhiteSpaceAroundTheRootAndNothingElse) {
  EXPECT_TRUE(Loads(" \t\r\n{ \t\r\n} \t\r\n"));
  EXPECT_TRUE(Loads(std::string(1000, ' ') + "[" + std::string(1000, '\n') + "]" +
                    std::string(1000, '\t')));
  for (const char* text :
       {"{} x", "{}{}", "[] 1", "{},", "x{}", "\f{}", "\v[]", "\u00a0{}", "\ufeff{}"}) {
    EXPECT_FALSE(Loads(text)) << text;
  }
}

TEST(Load, RefusesWhatIsNotStrictJson) {
  for (const std::string& text :
       Split("{|[|}|]|[1|[1,|[1,]|[,1]|{\"a\"}|{\"a\":}|{\"a\":1,}|{a:1}|{'a':1}|[1 2]|[1}|"
             "{\"a\":1]|[// c\n1]|[/* c */1]|[NaN]|[Infinity]|[-Inf]|[+1]|[01]|[-01]|[1.]|[.5]|"
             "[1e]|[1e+]|[-]|[0x1]|[True]|[nul]|[truee]|[\"]|[\"\\\"]|[\"\\x41\"]|[\"\\u12\"]|"
             "[\"\\u12g4\"]|[\"\n\"]|[\"\\ud800\"]|[\"\\ud800\\u0041\"]|[1e400]|[-1e309]|"
             "{\"a\":1 \"b\":2}|{1:2}|[\"a\" \"b\"]|[undefined]")) {
    EXPECT_FALSE(Loads(text)) << text;
  }
}

TEST(Load, ReadsUpToTheFirstNul) {
  EXPECT_TRUE(Loads(std::string("{\"a\":1}\0garbage", 15)));
  EXPECT_TRUE(Loads(std::string("{\"a\":1}\0]}", 10)));
  EXPECT_TRUE(Loads(std::string("{\"a\":1}\0\"", 9)));
  EXPECT_FALSE(Loads(std::string("{\"a\"\0:1}", 8)));
  EXPECT_FALSE(Loads(std::string("\0{}", 3)));
  EXPECT_FALSE(Loads(std::string("[\"a\0b\"]", 7)));
  EXPECT_FALSE(Loads(std::string("[\"a\\\0\"]", 7)));
}

TEST(Load, LeavesTheRootNullWhenItFails) {
  constexpr std::size_t kTooDeep = Document::kMaxDepth + 1;
  const std::string too_deep = Repeated("[", kTooDeep) + Repeated("]", kTooDeep);
  for (const std::string& text : Split("|7|{\"a\":1|[1,]|{\"a\":\"\x1f\"}|" + too_deep)) {
    SCOPED_TRACE(text);
    LoadedDocument document("{\"a\":1}");
    EXPECT_FALSE(document.Load(Text(text)));
    EXPECT_EQ(Written(document), "null");
    EXPECT_EQ(document.MemberCount(), 0U);
    EXPECT_FALSE(document.HasMember("a"));
    EXPECT_TRUE(document["a"].IsNull());
    document.AddMember("a", document.MakeValue());
    EXPECT_EQ(Written(document), "null");
    EXPECT_TRUE(document.Load("{\"c\":3}"));
    EXPECT_EQ(Written(document), "{\"c\":3}");
  }
}

// Strings are scanned in steps. Tries every place in a step and every control character, in names
// and values, after plain text and after escapes.
TEST(Load, RefusesControlCharactersWhereverTheyStandInAString) {
  for (char control = 1; control < 0x20; ++control) {
    for (std::size_t before = 0; before < 40; ++before) {
      const std::string plain(before, 'x');
      const std::string raw = plain + control + "the rest of the string, which goes on";
      EXPECT_FALSE(Loads("[\"" + raw + "\"]")) << int{control} << " after " << before;
      EXPECT_FALSE(Loads("{\"" + raw + "\":1}")) << int{control} << " after " << before;
      EXPECT_FALSE(Loads("[\"\\n" + raw + "\"]")) << int{control} << " after " << before;
    }
  }
  EXPECT_TRUE(Loads("[\"a delete character, \x7f, is as good as any other\"]"));
}

TEST(Load, ReadsEveryEscape) {
  ValueDocument document(R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\uD83d\uDe00")");
  EXPECT_EQ(document.value().GetString().utf8(), "\"\\/\b\f\n\r\tA\u00e9\u20ac\U0001F600");
}

TEST(Load, ReadsStringsOfEveryLength) {
  for (std::size_t length = 0; length < 70; ++length) {
    const std::string text(length, 'x');
    EXPECT_EQ(ValueDocument("\"" + text + "\"").value().GetString().utf8(), text);
  }
}

TEST(Load, ReadsAnEscapeWhereverItStands) {
  for (std::size_t before = 0; before < 40; ++before) {
    for (std::size_t behind = 0; behind < 40; ++behind) {
      const std::string start(before, 'x');
      const std::string end(behind, 'y');
      ValueDocument document("\"" + start + "\\n" + end + "\"");
      EXPECT_EQ(document.value().GetString().utf8(), start + '\n' + end);
    }
  }
}

TEST(Load, RefusesAStringWithoutAnEndOfEveryLength) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string text(length, 'x');
    EXPECT_FALSE(Loads("[\"" + text)) << length;
    EXPECT_FALSE(Loads("{\"" + text)) << length;
    EXPECT_FALSE(Loads("[\"" + text + "\\")) << length;
    EXPECT_FALSE(Loads("[\"" + text + "\\\"")) << length;
  }
}

TEST(Load, ReadsANumberWithAnEnormousNegativeExponentAsZero) {
  for (const char* number :
       {"1e-400", "1e-2147483639", "0.0000000001e-2147483639", "0.0000000001E-2147483639",
        "1.5E-2147483648", "100.0000000001e-2147483639", "0.00000000000000001e-4294967297",
        "1e-99999999999999999999999999999999", "123456789.123e-000000000010000000000"}) {
    EXPECT_EQ(ValueDocument(number).value().GetDouble(), 0.0) << number;
  }
  EXPECT_EQ(ValueDocument("-1e-10000000000").written(), "-0.0");
}

TEST(Load, ReadsExponentsWithLeadingZeros) {
  EXPECT_EQ(ValueDocument("5e-00000000000000000001").value().GetDouble(), 0.5);
  EXPECT_EQ(ValueDocument("5e+00000000000000000001").value().GetDouble(), 50.0);
  EXPECT_EQ(ValueDocument("5E-0000000000").value().GetDouble(), 5.0);
}

TEST(Load, LeavesTextThatLooksLikeAnExponentAlone) {
  EXPECT_EQ(ValueDocument("\"e-12345678901234567890\"").value().GetString().utf8(),
            "e-12345678901234567890");
  for (const char* text : {"[true-12345678901]", "[-12345678901e]", "[01e-12345678901]",
                           "[1.e-12345678901]", "[e-12345678901]", "[1e-12345678901e1]"}) {
    EXPECT_FALSE(Loads(text)) << text;
  }
}

TEST(Load, ReadsFractionsWithManyZeros) {
  const std::string zeros(100'000, '0');
  EXPECT_EQ(ValueDocument("0." + zeros + "1").value().GetDouble(), 0.0);
  EXPECT_EQ(ValueDocument("0." + zeros + "5e100000").value().GetDouble(), 0.5);
  EXPECT_EQ(ValueDocument("1." + zeros).value().GetDouble(), 1.0);
}

TEST(Load, RefusesAHundredMillionZerosBehindADecimalPoint) {
  std::string text = "[0.";
  text.append(99'999'999, '0');
  EXPECT_TRUE(Loads(text + "]"));
  EXPECT_TRUE(Loads(text + "1]"));
  EXPECT_FALSE(Loads(text + "0]"));
}

constexpr std::size_t k4Gibibytes = std::size_t{1} << 32;

bool HasMemory(std::size_t bytes) {
  return static_cast<std::size_t>(sysconf(_SC_AVPHYS_PAGES)) *
             static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) >
         bytes;
}

// Reads "[]" behind so much white space that the text has `size` bytes.
bool ReadsTextOf(std::size_t size) {
  std::string text;
  text.reserve(size + 64);  // the reader appends a few bytes
  text.assign(size - 2, ' ');
  text += "[]";
  ovrant::json::ParsedText tree;
  return ovrant::json::ReadTree(std::move(text), 1, tree);
}

TEST(LargeTextTest, MayHaveOneByteLessThan4Gibibytes) {
  if (!HasMemory(k4Gibibytes + k4Gibibytes / 4)) GTEST_SKIP() << "not enough memory";
  EXPECT_TRUE(ReadsTextOf(k4Gibibytes - 1));
  EXPECT_FALSE(ReadsTextOf(k4Gibibytes));
}

TEST(ToString, ReplacesWhatWasInTheText) {
  LoadedDocument document(" { \"a\" : [ 1 , { } , \"b\" , null ] , \"c\" : true } ");
  ovrant::utils::ovrant_ustring text(
      "something that was here before, and longer than what comes now, by far");
  document.ToString(text);
  EXPECT_EQ(text.utf8(), "{\"a\":[1,{},\"b\",null],\"c\":true}");
}

TEST(ToString, WritesEveryKindOfNumber) {
  for (const char* number :
       {"0", "-1", "2147483647", "-2147483648", "4294967295", "9223372036854775807",
        "-9223372036854775808", "18446744073709551615", "0.1", "-0.0", "1.0", "1e30", "1.5e300",
        "5e-324", "2.2250738585072014e-308", "1.7976931348623157e308", "123456789012345680.0"}) {
    EXPECT_EQ(ValueDocument(number).written(), number);
  }
}

TEST(ToString, WritesDoublesSoThatTheyReadBack) {
  std::mt19937_64 random(20240229);
  for (int i = 0; i < 100'000; ++i) {
    const std::uint64_t bits = random();
    double number;
    std::memcpy(&number, &bits, sizeof(number));
    if (number != number || number - number != 0) continue;  // Not finite.
    Document document;
    Value value = document.MakeValue();
    value.SetDouble(number);
    document.AddMember("n", value);
    const std::string text = Written(document);
    EXPECT_EQ(std::strtod(text.c_str() + 5, nullptr), number) << text;
    EXPECT_LE(text.size(), 5U + 25U + 1U) << text;
  }
}

TEST(ToString, EndsTheTextAtANumberThatJsonCannotSpell) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double number : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
    LoadedDocument document("{\"v\":[1,2,3],\"w\":4}");
    document["v"][1].SetDouble(number);
    EXPECT_EQ(Written(document), "{\"v\":[1,");
    document["v"].SetDouble(number);
    EXPECT_EQ(Written(document), "{\"v\":");
  }
}

std::string Escaped(char control) {
  constexpr std::string_view kShort = "\b\f\n\r\t";
  const std::size_t found = kShort.find(control);
  if (found != std::string_view::npos) return std::string("\\") + "bfnrt"[found];
  return std::string("\\u00") + (control < 0x10 ? "0" : "1") + "0123456789ABCDEF"[control & 15];
}

TEST(ToString, EscapesControlCharactersWhereverTheyStand) {
  for (char control = 1; control < 0x20; ++control) {
    for (std::size_t before = 0; before < 40; ++before) {
      const std::string plain(before, 'x');
      Document document;
      Value value = document.MakeValue();
      value.SetString(Text(plain + control + plain));
      document.AddMember(Text(plain + control), value);
      const std::string expected =
          "{\"" + plain + Escaped(control) + "\":\"" + plain + Escaped(control) + plain + "\"}";
      EXPECT_EQ(Written(document), expected);
      EXPECT_TRUE(document.Load(Text(expected)));
      EXPECT_EQ(document.MemberAt(0).GetString().utf8(), plain + control + plain);
    }
  }
}

TEST(ToString, EscapesQuotesBackslashesAndNuls) {
  ValueDocument document(R"("\"\\\/\u0000\u007f\u00e9\ud83d\ude00")");
  EXPECT_EQ(document.written(), "\"\\\"\\\\/\\u0000\x7f\u00e9\U0001F600\"");
  EXPECT_EQ(ValueDocument(R"({"a\u0000b":1})").written(), R"({"a\u0000b":1})");
}

TEST(ToString, WritesALoneLowSurrogateAsReplacementCharacters) {
  ValueDocument document("\"\\udc00\"");
  const std::string written = document.written();
  EXPECT_EQ(written, "\"\ufffd\ufffd\ufffd\"");
  EXPECT_EQ(ValueDocument(written).written(), written);
}

}  // namespace
}  // namespace stowra_test
