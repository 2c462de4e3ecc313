// SPDX-License-Identifier: MIT
// Texts, URLs and random numbers.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "common_stowraapi/platform/random.h"
#include "common_stowraapi/platform/url.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/allocation/each_failure.h"
#include "tests/support/text.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

const char kBefore[] = "the content before, longer than a small buffer: \xC3\xA9\xC3\xA9\xC3\xA9";
const std::u16string kUnitsBefore = UnitsOf(kBefore);

struct Subject {
  ovrant_ustring text{kBefore};
};

// Checks that `work` throws without memory and leaves the text as it was. Returns how often it
// threw.
long FailWorkOnText(const std::function<void(ovrant_ustring&)>& work) {
  const auto check = [](Subject& subject) {
    EXPECT_EQ(UnitsOf(subject.text), kUnitsBefore);
    subject.text += "!";
    EXPECT_EQ(subject.text.length(), kUnitsBefore.size() + 1);
  };
  return FailThrowing<Subject>([&](Subject& subject) { work(subject.text); }, check);
}

class TextAllocationTest : public testing::Test {
 protected:
  const std::string ascii_ = std::string(9000, 'a');
  const std::string mixed_ = std::string(5000, 'a') + std::string(6000, '\xFF');
  const std::wstring wide_ = std::wstring(9000, L'\x20AC');
  const ovrant_ustring long_{mixed_.c_str()};
};

TEST_F(TextAllocationTest, ChangesThrowAndKeepTheText) {
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text = long_; }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text = ascii_.c_str(); }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text.assign_utf8(mixed_.c_str()); }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text = mixed_; }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text = long_.units(); }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text += long_; }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text += mixed_; }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text += long_.units(); }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text += text; }), 0);
  EXPECT_GT(FailWorkOnText([&](ovrant_ustring& text) { text.replace_all("t", long_); }), 0);
}

TEST_F(TextAllocationTest, FormattingThrowsAndKeepsTheText) {
  const auto format = [this](ovrant_ustring& text) {
    text.Format("a format longer than a small buffer %s %s %s %100d %#o %p %c", long_, "\xC3\xA9",
                wide_.c_str(), 1, 8U, &text, 0x1F600);
  };
  EXPECT_GT(FailWorkOnText(format), 6);
}

TEST_F(TextAllocationTest, FormattingFloatingNumbersThrowsAndKeepsTheText) {
  for (const char* const conversion : {"%.300f", "%.4096f", "%.4096e", "%4096g", "%a"}) {
    for (const double number : {1.5, 1e300, -1e-300}) {
      const auto format = [&](ovrant_ustring& text) { text.Format(conversion, number); };
      EXPECT_GT(FailWorkOnText(format), 0) << conversion << " " << number;
    }
  }
}

TEST_F(TextAllocationTest, ReadingThrowsAndKeepsTheText) {
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { const ovrant_ustring copy(text); }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text.utf8(); }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text.Left(40); }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text.Mid(1, 40); }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text.Right(40); }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text.TokenizeToVector(" "); }), 1);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { GetFileName(text, false); }), 1);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text + "abc"; }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { "abc" + text; }), 0);
  EXPECT_GT(FailWorkOnText([](ovrant_ustring& text) { text + text; }), 0);
}

TEST_F(TextAllocationTest, ConstructionThrows) {
  EXPECT_GT(FailCall([&] { ovrant_ustring(ascii_.c_str()); }), 0);
  EXPECT_GT(FailCall([&] { ovrant_ustring(mixed_.data(), 8000); }), 0);
  EXPECT_GT(FailCall([&] { ovrant_ustring(wide_.c_str()); }), 0);
  EXPECT_GT(FailCall([&] { ovrant_ustring copy(mixed_); }), 0);
  EXPECT_GT(FailCall([&] { ovrant_ustring copy(long_.units()); }), 0);
  const StringMap map = {{long_, kBefore}, {kBefore, long_}};
  EXPECT_GT(FailCall([&] { const StringMap copy(map); }), 5);
}

TEST_F(TextAllocationTest, ShortTextsAreAllocatedOnceAtMost) {
  for (const std::string& bytes : {std::string("a"), std::string("\xC3\xA9t\xC3\xA9"),
                                   std::string(512, 'a'), std::string(170, '\xFF')}) {
    // Once alone, once with what follows.
    const long failing_runs = bytes.size() > 7 ? 2 : 0;
    EXPECT_EQ(FailCall([&] { Text(bytes); }), failing_runs) << bytes.size();
    const ovrant_ustring converted = Text(bytes);
    EXPECT_EQ(FailCall([&] { converted.utf8(); }), failing_runs) << bytes.size();
  }
}

TEST_F(TextAllocationTest, ComparingNeedsNoMemory) {
  const ovrant_ustring sharp = "STRA\u00DFE", double_s = "strasse";
  const auto compare = [&](ovrant_ustring& text) {
    bool right = text.compare(long_) != 0 && long_.compare_nocase(long_) == 0;
    right = right && sharp.compare_nocase(double_s) == 0;
    right = right && text.find(long_, 0) == ovrant_ustring::npos && text.to_int() == 0;
    right = right && std::hash<ovrant_ustring>()(text) != std::hash<ovrant_ustring>()(long_);
    if (!right) throw std::bad_alloc();
  };
  EXPECT_EQ(FailWorkOnText(compare), 0);
}

TEST_F(TextAllocationTest, ReadingANumberGivesItOrThrows) {
  struct Number {
    ovrant_ustring text{("  -" + std::string(800, '1') + "e-799 ").c_str()};
    float value = 0;
  };
  const auto read = [](Number& number) { number.value = number.text.to_float(); };
  FailEachAllocation<Number>(read, [](Number& number, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_FLOAT_EQ(number.value, outcome.threw ? 0 : -1.1111111F);
  });
}

TEST_F(TextAllocationTest, AUrlThrowsAndKeepsTheValue) {
  const ovrant_ustring address(("http://h/?key=" + ascii_ + "&encoded=%41" + ascii_).c_str());
  EXPECT_GT(FailCall([&] { const ovrant::internet::URL made(address); }), 0);
  ovrant::internet::URL url(address);
  for (const char* const key : {"key", "encoded", "a key that is longer than a small buffer"}) {
    const auto ask = [&](ovrant_ustring& value) { url.getValueForExtraInfoKey(key, value); };
    EXPECT_GT(FailWorkOnText(ask), 0) << key;
  }
}

TEST(RandomAllocationTest, NumbersNeedNoMemory) {
  const auto draw = [] {
    Random::SetSeed(7);
    if (Random::GetValue(3, 4) / 5 != 0) throw std::bad_alloc();
  };
  EXPECT_EQ(FailCall(draw), 0);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
