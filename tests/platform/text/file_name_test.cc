// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "common_stowraapi/platform/ustring.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::utils::GetFileName;

struct FileName {
  const char* path;
  const char* name;
  const char* stem;  // the name without its extension
};

TEST(FileNameTest, FollowsTheLastSeparatorAndLosesTheLastExtension) {
  const FileName names[] = {
    {"/home/user/chair.qmf", "chair.qmf", "chair"},
    {"models/chair.qmf", "chair.qmf", "chair"},
    {"/chair.qmf", "chair.qmf", "chair"},
    {"//a//b", "b", "b"},
    {"chair.qmf", "chair.qmf", "chair"},
    {"", "", ""},
    {"/home/user/", "", ""},
    {"/", "", ""},
    {"/a.b/c.tar.gz", "c.tar.gz", "c.tar"},
    {"chair.", "chair.", "chair"},
    {"a..b", "a..b", "a."},
    // A dot at the beginning starts no extension, nor does one in a folder.
    {"/a/.profile", ".profile", ".profile"},
    {".", ".", "."},
    {"/a/.profile.bak", ".profile.bak", ".profile"},
    {"/models.old/chair", "chair", "chair"},
    {"/models.old/", "", ""},
#if !defined(_WIN32)
    {"/a/b\\c.qmf", "b\\c.qmf", "b\\c"},
#endif
    {"/\xC3\xA9/\xF0\x9F\xAA\x91 \"x\".qmf", "\xF0\x9F\xAA\x91 \"x\".qmf", "\xF0\x9F\xAA\x91 \"x\""}
  };
  for (const auto& [path, name, stem] : names) {
    EXPECT_EQ(GetFileName(path, true), name) << path;
    EXPECT_EQ(GetFileName(path, false), stem) << path;
  }
}

TEST(FileNameTest, KeepsALoneSurrogate) {
  EXPECT_EQ(GetFileName(TextOf(u"/\xD83E.x"), true), TextOf(u"\xD83E.x"));
}

}  // namespace
}  // namespace stowra_test
