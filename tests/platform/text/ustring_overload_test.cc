// SPDX-License-Identifier: MIT
// Which types make, extend and meet a string, and which function an argument selects.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

#include "common_stowraapi/platform/ustring.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using namespace std::string_literals;       // NOLINT(google-build-using-namespace): literals only
using namespace std::string_view_literals;  // NOLINT(google-build-using-namespace)

const char kUtf8[] = "a\xC3\xA9\xF0\x9F\x98\x80";
const std::u16string kUnits = u"a\u00E9\U0001F600";

TEST(UStringOverloadTest, IsMadeOfUtf8) {
  EXPECT_EQ(ovrant_ustring(std::string(kUtf8)).units(), kUnits);
  EXPECT_EQ(ovrant_ustring(std::string_view(kUtf8)).units(), kUnits);
  EXPECT_EQ(ovrant_ustring("a\0b"s).units(), u"a\0b"sv);
  EXPECT_EQ(ovrant_ustring("abc"sv.substr(0, 2)).units(), u"ab");
  EXPECT_TRUE(ovrant_ustring(std::string_view()).empty());
}

TEST(UStringOverloadTest, IsMadeOfUtf16) {
  EXPECT_EQ(ovrant_ustring(kUnits).utf8(), kUtf8);
  EXPECT_EQ(ovrant_ustring(std::u16string_view(kUnits)).utf8(), kUtf8);
  EXPECT_EQ(ovrant_ustring(u"a\u00E9\U0001F600"sv).utf8(), kUtf8);
  EXPECT_EQ(ovrant_ustring(u"\xD800\0x"s).units(), u"\xD800\0x"sv);
  EXPECT_TRUE(ovrant_ustring(std::u16string_view()).empty());
}

TEST(UStringOverloadTest, IsAssignedAndExtended) {
  ovrant_ustring text;
  text = std::string(kUtf8);
  EXPECT_EQ(text.units(), kUnits);
  text = "bc"sv;
  EXPECT_EQ(&(text += std::string(kUtf8)), &text);
  text += "\0"sv;
  EXPECT_EQ(text.units(), u"bc"s + kUnits + u"\0"s);
  text = kUnits;
  text += u"x"s;
  text += u"yz"sv;
  EXPECT_EQ(text.units(), kUnits + u"xyz");
  text = u"new"sv;
  EXPECT_EQ(text, "new");
}

TEST(UStringOverloadTest, TakesAPartOfItself) {
  ovrant_ustring text("a text, longer than a small buffer");
  text = text.units().substr(2, 4);
  EXPECT_EQ(text, "text");
  for (int i = 0; i < 4; ++i) text += text.units();
  EXPECT_EQ(text.length(), 64u);
  EXPECT_EQ(text.Right(8), "texttext");
}

TEST(UStringOverloadTest, PlusJoins) {
  const ovrant_ustring a("a");
  const ovrant_ustring b("\xC3\xA9");
  EXPECT_EQ((a + b).units(), u"a\u00E9");
  EXPECT_EQ(("x" + a).units(), u"xa");
  EXPECT_EQ((a + "x" + b + L"\u20AC").units(), u"ax\u00E9\u20AC");
  EXPECT_EQ((L"w" + a).units(), u"wa");
  EXPECT_EQ(a + static_cast<const char*>(nullptr), a);
  EXPECT_EQ(a + 0, a);
  EXPECT_EQ(a + nullptr, a);
  EXPECT_EQ(a + "", a);
  char buffer[] = "buffer";
  EXPECT_EQ(buffer + a, "buffera");
  EXPECT_EQ(a, "a");
}

TEST(UStringOverloadTest, FindBeginsAtTheStart) {
  const ovrant_ustring text("abcabc");
  EXPECT_EQ(text.find("bc"), 1u);
  EXPECT_EQ(text.find(L"c"), 2u);
  EXPECT_EQ(text.find("x"), ovrant_ustring::npos);
  EXPECT_EQ(text.find("bc", 2), 4u);
}

TEST(UStringOverloadTest, PrintsUtf8) {
  std::ostringstream out;
  out << ovrant_ustring(kUtf8) << '|' << ovrant_ustring("a\0b", 3) << "|" << 5;
  EXPECT_EQ(out.str(), std::string(kUtf8) + "|" + "a\0b"s + "|5");
  out.str("");
  out.width(4);
  out << ovrant_ustring("ab");
  EXPECT_EQ(out.str(), "  ab");
}

TEST(UStringOverloadTest, EqualStringsHaveOneHash) {
  const std::hash<ovrant_ustring> hash;
  EXPECT_EQ(hash(ovrant_ustring("key")), hash(ovrant_ustring(u"key"sv)));
  EXPECT_NE(hash(ovrant_ustring("key")), hash(ovrant_ustring("Key")));
  std::unordered_map<ovrant_ustring, int> map{{"one", 1}, {"two", 2}};
  EXPECT_EQ(map.at("two"), 2);
  EXPECT_EQ(map.count("three"), 0u);
}

// What a host's functions take, and which of them a call selects.
std::string Chosen(const ovrant_ustring& /*text*/) { return "string"; }
std::string Chosen(std::string_view /*text*/) { return "view"; }
std::string Taken(const ovrant_ustring& text) { return text.utf8(); }

TEST(UStringOverloadTest, ALiteralIsAString) {
  char buffer[] = "buffer";
  char* const pointer = buffer;
  EXPECT_EQ(Taken("literal"), "literal");
  EXPECT_EQ(Taken(L"wide"), "wide");
  EXPECT_EQ(Taken(buffer), "buffer");
  EXPECT_EQ(Taken(pointer), "buffer");
  EXPECT_EQ(Taken({}), "");
  EXPECT_EQ(Taken({"abc", 2}), "ab");
  const ovrant_ustring copied = "copied";
  const ovrant_ustring braced{"braced"};
  const ovrant_ustring empty = {};
  EXPECT_EQ(copied.utf8() + braced.utf8() + empty.utf8(), "copiedbraced");
  EXPECT_TRUE(ovrant_ustring(nullptr, 0).empty());
}

TEST(UStringOverloadTest, AStdStringKeepsItsOverload) {
  EXPECT_EQ(Chosen("x"s), "view");
  EXPECT_EQ(Chosen("x"sv), "view");
  EXPECT_EQ(Chosen(ovrant_ustring("x")), "string");
  EXPECT_FALSE((std::is_convertible_v<std::string, ovrant_ustring>));
  EXPECT_FALSE((std::is_convertible_v<std::u16string_view, ovrant_ustring>));
  EXPECT_FALSE((std::is_convertible_v<ovrant_ustring, std::string>));
}

TEST(UStringOverloadTest, AssignmentFromNothingEmpties) {
  ovrant_ustring text("before");
  text = {};
  EXPECT_TRUE(text.empty());
  text = "before";
  text = 0;
  EXPECT_TRUE(text.empty());
  text = "before";
  text = nullptr;
  EXPECT_TRUE(text.empty());
  text += "a";
  text += L"b";
  text += {};
  EXPECT_EQ(text, "ab");
}

TEST(UStringOverloadTest, ALiteralComparesAndLooksUp) {
  const ovrant_ustring text("key");
  EXPECT_TRUE(text == "key" && "key" == text && text == L"key");
  EXPECT_TRUE(text != "other" && "a" < text && text < "z");
  StringMap map{{"key", "value"}, {L"wide", L"w"}};
  EXPECT_EQ(map["key"], "value");
  EXPECT_EQ(map.at("wide"), "w");
  EXPECT_EQ(map.find("absent"), map.end());
  map.emplace("new", "1");
  EXPECT_EQ(map.count("new"), 1u);
}

TEST(UStringOverloadTest, ALiteralIsTheOtherBranch) {
  const ovrant_ustring text("text");
  for (const bool first : {true, false}) {
    EXPECT_EQ(first ? text : "literal", first ? "text" : "literal");
    EXPECT_EQ(first ? "literal" : text, first ? "literal" : "text");
  }
}

// A host's own string, as many have it.
struct HostString {
  operator const char*() const { return "host"; }       // NOLINT(google-explicit-constructor)
  operator std::string_view() const { return "view"; }  // NOLINT(google-explicit-constructor)
};

TEST(UStringOverloadTest, AHostsStringStaysACharPointer) {
  const HostString host;
  EXPECT_EQ(ovrant_ustring(host), "host");
  ovrant_ustring text("a");
  EXPECT_EQ(text + host, "ahost");
  text = host;
  EXPECT_EQ(text, "host");
}

// One that also knows this string class.
struct HostName {
  operator const char*() const { return "bytes"; }    // NOLINT(google-explicit-constructor)
  operator ovrant_ustring() const { return "name"; }  // NOLINT(google-explicit-constructor)
};

TEST(UStringOverloadTest, AddsAHostsTypeThatConvertsToBoth) {
  EXPECT_EQ(ovrant_ustring("a") + HostName(), "abytes");
  EXPECT_EQ(ovrant_ustring("a") + ovrant_ustring("b"), "ab");
}

}  // namespace
}  // namespace stowra_test
