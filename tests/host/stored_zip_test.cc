// SPDX-License-Identifier: MIT
#include "host/stored_zip.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

using namespace std::string_literals;

TEST(StoredZipTest, WritesTheExpectedBytes) {
  // 0xCBF43926 is the published CRC of these digits.
  const std::string description =
      "\x0A\0\0\x08\0\0\0\0\x21\0\x26\x39\xF4\xCB\x09\0\0\0\x09\0\0\0\x05\0\0\0"s;
  EXPECT_EQ(MakeStoredZip("a.qmf", "123456789"),
            "PK\x03\x04"s + description + "a.qmf123456789" + "PK\x01\x02\x0A\0"s + description +
                "\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s + "a.qmf" +
                "PK\x05\x06\0\0\0\0\x01\0\x01\0\x33\0\0\0\x2C\0\0\0\0\0"s);
}

}  // namespace
}  // namespace stowra
