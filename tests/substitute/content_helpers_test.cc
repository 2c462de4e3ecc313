// The helpers on the substitute platform: what they search and which part they ask for.

#include "common_stowraapi/content/content_helpers.h"

#include <string>

#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::GetFilenameFromContentDisposition;
using ovrant::stowraapiclient::GetStowraIdFromUrl;

class ContentHelpersTest : public ContentTest {
 protected:
  const RecordingText recording_;
};

TEST_F(ContentHelpersTest, AnIdEndsAtTheNextAmpersand) {
  EXPECT_EQ(GetStowraIdFromUrl("a&b?mid=123&x&y"), "123");
  EXPECT_EQ(TakeLines(), R"(
find 'mid=' from 0
find '&' from 4
Mid 8 3
)");
}

TEST_F(ContentHelpersTest, AnIdEndsAtTheEnd) {
  EXPECT_EQ(GetStowraIdFromUrl("mid=123"), "123");
  EXPECT_EQ(TakeLines(), R"(
find 'mid=' from 0
find '&' from 0
Mid 4 3
)");
}

TEST_F(ContentHelpersTest, AUrlWithoutAnIdIsSearchedOnce) {
  EXPECT_EQ(GetStowraIdFromUrl("http://a/?id=1&x"), "");
  EXPECT_EQ(TakeLines(), "\nfind 'mid=' from 0\n");
}

TEST_F(ContentHelpersTest, AQuotedNameEndsAtTheModelExtension) {
  EXPECT_EQ(GetFilenameFromContentDisposition("x; filename=\"chair.qmf\""), "chair");
  EXPECT_EQ(TakeLines(), R"(
find 'filename="' from 0
find '.qmf' from 0
Mid 13 5
)");
}

TEST_F(ContentHelpersTest, ABareNameEndsAtTheOtherExtension) {
  EXPECT_EQ(GetFilenameFromContentDisposition("x; filename=chair.kmz"), "chair");
  EXPECT_EQ(TakeLines(), R"(
find 'filename="' from 0
find 'filename=' from 0
find '.qmf' from 0
find '.kmz' from 0
Mid 12 5
)");
}

TEST_F(ContentHelpersTest, AHeaderWithoutANameIsNotSearchedForAnExtension) {
  EXPECT_EQ(GetFilenameFromContentDisposition("attachment.qmf"), "");
  EXPECT_EQ(TakeLines(), R"(
find 'filename="' from 0
find 'filename=' from 0
)");
}

TEST_F(ContentHelpersTest, AHeaderWithoutAnExtensionIsNotCut) {
  EXPECT_EQ(GetFilenameFromContentDisposition("filename=\"chair.zip\""), "");
  EXPECT_EQ(TakeLines(), R"(
find 'filename="' from 0
find '.qmf' from 0
find '.kmz' from 0
)");
}

// What a negative count gives is for the platform to say.
TEST_F(ContentHelpersTest, ANegativeCountIsPassedThrough) {
  EXPECT_EQ(GetFilenameFromContentDisposition("a.qmf; filename=\"chair.kmz\""), kNegativeCount);
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 17 -16"));
  EXPECT_EQ(GetFilenameFromContentDisposition("a.kmz; filename=chair"), kNegativeCount);
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 16 -15"));
}

TEST_F(ContentHelpersTest, ACountOfZeroIsPassedThrough) {
  EXPECT_EQ(GetStowraIdFromUrl("mid=&x"), "");
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 4 0"));
  EXPECT_EQ(GetFilenameFromContentDisposition("filename=.qmf"), "");
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 9 0"));
}

// Only the low 32 bits of what find gives for an absent text are set on some platforms.
TEST_F(ContentHelpersTest, AnAbsentTextIsTakenFromTheLowBits) {
  for (const unsigned long absent : {0xFFFFFFFFUL, 0x12345678FFFFFFFFUL}) {
    SetAbsentIndex(absent);
    EXPECT_EQ(GetStowraIdFromUrl("http://a/"), "");
    EXPECT_EQ(GetStowraIdFromUrl("?mid=123"), "123");
    EXPECT_EQ(GetFilenameFromContentDisposition("attachment"), "");
    EXPECT_EQ(GetFilenameFromContentDisposition("filename=chair"), "");
    EXPECT_EQ(GetFilenameFromContentDisposition("filename=chair.kmz"), "chair");
  }
}

}  // namespace
}  // namespace stowra_substitute
