#include "common_stowraapi/platform/text/find_unit.h"

#include <gtest/gtest.h>

#include <string>

namespace stowra_test {
namespace {

using ovrant::utils::FindUnit;

TEST(FindUnitTest, FindsTheFirstOccurrence) {
  EXPECT_EQ(FindUnit(u"a&b&c", '&'), 1U);
  EXPECT_EQ(FindUnit(u"&", '&'), 0U);
  EXPECT_EQ(FindUnit(std::u16string(1'000, u'x') + u'&', '&'), 1'000U);
}

TEST(FindUnitTest, GivesTheSizeWithoutOne) {
  EXPECT_EQ(FindUnit(u"", '&'), 0U);
  EXPECT_EQ(FindUnit(u"abc", '&'), 3U);
}

TEST(FindUnitTest, IgnoresTheBytesOfOtherCharacters) {
  // Each of these has a byte of '&', and so have two neighbours together.
  const std::u16string others = u"\u2600\u0126\u2626\u2600\u2600\u0026";
  EXPECT_EQ(FindUnit(others, '&'), others.size() - 1);
  EXPECT_EQ(FindUnit(std::u16string_view(others).substr(0, others.size() - 1), '&'),
            others.size() - 1);
}

TEST(FindUnitTest, DoesNotLookBehindTheEnd) {
  const std::u16string text = u"ab&";
  EXPECT_EQ(FindUnit(std::u16string_view(text).substr(0, 2), '&'), 2U);
}

}  // namespace
}  // namespace stowra_test
