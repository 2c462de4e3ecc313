// The text type with each of its allocations failing in turn.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "common_stowraapi/platform/url.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/platform/text.h"
#include "tests/support/failing_new.h"

#ifdef STOWRA_COUNTS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;

const char kBefore[] = "the content before, longer than a small buffer: \xC3\xA9\xC3\xA9\xC3\xA9";

// Lets the first allocation of `change` fail, then the second, and so on until it succeeds. After
// each failure the string has to be what it was. Returns how often it failed.
int FailEachAllocation(const std::function<void(ovrant_ustring&)>& change) {
  for (int failures = 0;; ++failures) {
    ovrant_ustring text(kBefore);
    const std::u16string before = UnitsOf(text);
    if (!RunsOutOfMemory([&] { change(text); }, failures)) return failures;
    EXPECT_EQ(UnitsOf(text), before);
  }
}

class UStringMemoryTest : public testing::Test {
 protected:
  const std::string ascii_ = std::string(9000, 'a');
  const std::string mixed_ = std::string(5000, 'a') + std::string(6000, '\xFF');
  const ovrant_ustring long_{mixed_.c_str()};
};

TEST_F(UStringMemoryTest, ChangesKeepTheStringWhenMemoryRunsOut) {
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text = long_; }), 0);
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text = ascii_.c_str(); }), 0);
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text.assign_utf8(mixed_.c_str()); }), 0);
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text += long_; }), 0);
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text += text; }), 0);
  EXPECT_GT(FailEachAllocation([&](ovrant_ustring& text) { text.replace_all("t", long_); }), 0);
}

TEST_F(UStringMemoryTest, FormatKeepsTheStringWhenMemoryRunsOut) {
  const auto format = [&](ovrant_ustring& text) {
    text.Format("a format longer than a small buffer %s %100d %.300f %s", long_, 1, 1.5, text);
  };
  EXPECT_GT(FailEachAllocation(format), 3);
}

TEST_F(UStringMemoryTest, ReadingKeepsTheStringWhenMemoryRunsOut) {
  EXPECT_GT(FailEachAllocation([](ovrant_ustring& text) { text.utf8(); }), 0);
  EXPECT_GT(FailEachAllocation([](ovrant_ustring& text) { text.Mid(1, 40); }), 0);
  EXPECT_GT(FailEachAllocation([](ovrant_ustring& text) { text.TokenizeToVector(" "); }), 1);
  EXPECT_GT(FailEachAllocation([](ovrant_ustring& text) { GetFileName(text, false); }), 1);
  EXPECT_GT(FailEachAllocation([](ovrant_ustring& text) { text + "abc"; }), 0);
}

TEST_F(UStringMemoryTest, ShortTextsAreAllocatedOnceAtMost) {
  for (const std::string& bytes : {std::string("a"), std::string("\xC3\xA9t\xC3\xA9"),
                                   std::string(512, 'a'), std::string(170, '\xFF')}) {
    const auto convert = [&](ovrant_ustring&) { ovrant_ustring(bytes.data(), bytes.size()); };
    EXPECT_EQ(FailEachAllocation(convert), bytes.size() > 7 ? 1 : 0) << bytes.size();
    const ovrant_ustring converted(bytes.data(), bytes.size());
    const auto convert_back = [&](ovrant_ustring&) { converted.utf8(); };
    EXPECT_EQ(FailEachAllocation(convert_back), bytes.size() > 7 ? 1 : 0) << bytes.size();
  }
}

TEST_F(UStringMemoryTest, ComparingNeedsNoMemory) {
  const auto compare = [&](ovrant_ustring& text) {
    EXPECT_NE(text.compare(long_), 0);
    EXPECT_EQ(long_.compare_nocase(long_), 0);
    EXPECT_EQ(text.find(long_, 0), ovrant_ustring::npos);
    EXPECT_EQ(text.to_int(), 0);
  };
  EXPECT_EQ(FailEachAllocation(compare), 0);
}

TEST_F(UStringMemoryTest, AUrlKeepsTheValueWhenMemoryRunsOut) {
  ovrant::internet::URL url(("http://h/?key=" + ascii_ + "&encoded=%41" + ascii_).c_str());
  const auto ask = [&](ovrant_ustring& value) { url.getValueForExtraInfoKey("key", value); };
  EXPECT_GT(FailEachAllocation(ask), 0);
  const auto decode = [&](ovrant_ustring& value) { url.getValueForExtraInfoKey("encoded", value); };
  EXPECT_GT(FailEachAllocation(decode), 2);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS
