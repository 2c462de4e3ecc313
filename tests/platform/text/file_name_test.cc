#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/platform/ustring.h"
#include "tests/platform/text/units.h"

namespace stowra_test {
namespace {

using ovrant::utils::GetFileName;

TEST(FileNameTest, IsWhatFollowsTheLastSeparator) {
  EXPECT_EQ(GetFileName("/home/user/chair.qmf", true), "chair.qmf");
  EXPECT_EQ(GetFileName("models/chair.qmf", true), "chair.qmf");
  EXPECT_EQ(GetFileName("/chair.qmf", true), "chair.qmf");
  EXPECT_EQ(GetFileName("//a//b", true), "b");
}

TEST(FileNameTest, IsTheWholePathWithoutASeparator) {
  EXPECT_EQ(GetFileName("chair.qmf", true), "chair.qmf");
  EXPECT_EQ(GetFileName("", true), "");
}

TEST(FileNameTest, IsEmptyBehindAFinalSeparator) {
  EXPECT_EQ(GetFileName("/home/user/", true), "");
  EXPECT_EQ(GetFileName("/home/user/", false), "");
  EXPECT_EQ(GetFileName("/", true), "");
}

TEST(FileNameTest, KeepsEveryExtensionWhenAsked) {
  EXPECT_EQ(GetFileName("/a.b/c.tar.gz", true), "c.tar.gz");
  EXPECT_EQ(GetFileName("/a/.profile", true), ".profile");
}

TEST(FileNameTest, DropsTheLastExtensionWhenAsked) {
  EXPECT_EQ(GetFileName("/home/user/chair.qmf", false), "chair");
  EXPECT_EQ(GetFileName("/a/c.tar.gz", false), "c.tar");
  EXPECT_EQ(GetFileName("chair.", false), "chair");
  EXPECT_EQ(GetFileName("a..b", false), "a.");
}

TEST(FileNameTest, ADotAtTheBeginningStartsNoExtension) {
  EXPECT_EQ(GetFileName("/a/.profile", false), ".profile");
  EXPECT_EQ(GetFileName(".", false), ".");
  EXPECT_EQ(GetFileName("/a/.profile.bak", false), ".profile");
}

TEST(FileNameTest, ADotInAFolderIsNoExtension) {
  EXPECT_EQ(GetFileName("/models.old/chair", false), "chair");
  EXPECT_EQ(GetFileName("/models.old/", false), "");
}

#if !defined(_WIN32)
TEST(FileNameTest, ABackslashIsACharacterLikeAnyOther) {
  EXPECT_EQ(GetFileName("/a/b\\c.qmf", true), "b\\c.qmf");
  EXPECT_EQ(GetFileName("b\\c.qmf", false), "b\\c");
}
#endif

TEST(FileNameTest, KeepsEveryUnitOfTheName) {
  EXPECT_EQ(UnitsOf(GetFileName("/\xC3\xA9/\xF0\x9F\xAA\x91 \"x\".qmf", true)),
            u"\U0001FA91 \"x\".qmf");
  EXPECT_EQ(GetFileName(TextOf(u"/\xD83E.x"), true), TextOf(u"\xD83E.x"));
}

}  // namespace
}  // namespace stowra_test
