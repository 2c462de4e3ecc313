// SPDX-License-Identifier: MIT
#include "host/file_scan.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using stowra::FileScan;
using stowra::ScanFile;

constexpr char kText[] = "BrevixClient0123456789012345";
constexpr std::size_t kPiece = std::size_t{256} << 10;

class FileScanTest : public testing::Test {
 protected:
  FileScan Scan(const std::string& content) const {
    const std::string path = (folder_.path() / "file").string();
    std::ofstream(path, std::ios::binary) << content;
    FileScan scan;
    std::string why;
    EXPECT_TRUE(ScanFile(path, kText, scan, why)) << why;
    return scan;
  }

  const TemporaryFolder folder_;
};

TEST_F(FileScanTest, TellsSizeAndBeginning) {
  for (const std::string content : {"", "P", "PK", "PKx"}) {
    EXPECT_EQ(Scan(content).size, content.size());
    EXPECT_EQ(Scan(content).beginning, content.substr(0, 2));
  }
}

// The text may lie across two pieces that are read.
TEST_F(FileScanTest, FindsTextAnywhere) {
  for (const std::size_t middle : {std::size_t{0}, std::size_t{500}, kPiece, 2 * kPiece}) {
    for (std::size_t shift = 0; shift <= 30; ++shift) {
      const std::size_t offset = middle + 15 < shift ? 0 : middle + 15 - shift;
      EXPECT_TRUE(Scan(std::string(offset, 'B') + kText + "--").holds_text) << offset;
    }
  }
}

TEST_F(FileScanTest, FindsNoPartOfTheText) {
  const std::string part = std::string(kText).substr(0, 27);
  EXPECT_FALSE(Scan("").holds_text);
  EXPECT_FALSE(Scan(part).holds_text);
  EXPECT_FALSE(Scan(std::string(kPiece - 10, 'B') + part + "x").holds_text);
}

TEST_F(FileScanTest, SaysWhyItFails) {
  FileScan scan;
  std::string why;
  EXPECT_FALSE(ScanFile((folder_.path() / "none").string(), kText, scan, why));
  EXPECT_EQ(why, "No such file or directory");
  EXPECT_FALSE(ScanFile(folder_.path().string(), kText, scan, why));
  EXPECT_EQ(why, "Is a directory");
}

}  // namespace
}  // namespace stowra_test
