// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/part_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::PartFile;

// A crash between the last two steps of an earlier part has left its note.
TEST(PartFileTest, ANewPartHasNoNoteOfAnEarlierOne) {
  const TemporaryFolder folder;
  const std::string path = (folder.path() / "model").string();
  const std::string note = path + ".part.validator";
  std::ofstream(note) << "\"old\"\n";
  PartFile part(path);
  ASSERT_EQ(part.Create({}, true), 0);
  EXPECT_FALSE(std::filesystem::exists(note));
}

}  // namespace
}  // namespace stowra_test
