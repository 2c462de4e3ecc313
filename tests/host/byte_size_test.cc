// SPDX-License-Identifier: MIT
#include "host/byte_size.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

TEST(ByteSizeTest, ReadsUnits) {
  const std::pair<std::string, const char*> rows[] = {
      {"1", "1"},
      {"512K", "524288"},
      {"3m", "3145728"},
      {"4G", "4294967296"},
      {"1T", "1099511627776"},
      {"18446744073709551615", "18446744073709551615"},
  };
  for (auto [size, bytes] : rows) {
    EXPECT_EQ(ReadByteSize(size), "");
    EXPECT_EQ(size, bytes);
  }
}

TEST(ByteSizeTest, RefusesOtherTexts) {
  for (const std::string text : {"", "0", "0K", "-1", "K", "4 G", "4GB", "1.5G", "010", "x",
                                 "18446744073709551616", "16777216T"}) {
    std::string size = text;
    EXPECT_EQ(ReadByteSize(size),
              "'" + text + "' is not a number of bytes above 0, such as 512K or 4G");
    EXPECT_EQ(size, text);
  }
}

}  // namespace
}  // namespace stowra
