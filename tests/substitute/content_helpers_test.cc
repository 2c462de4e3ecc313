// SPDX-License-Identifier: MIT
// The helpers on the substitute platform: what they search and which part they ask for.

#include "common_stowraapi/content/content_helpers.h"

#include <string>
#include <tuple>

#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::GetFilenameFromContentDisposition;
using ovrant::stowraapiclient::GetStowraIdFromUrl;

class ContentHelpersTest : public ContentTest {
 protected:
  const RecordingText recording_;
};

TEST_F(ContentHelpersTest, SearchNoFurtherThanNeeded) {
  const std::tuple<const char*, const char*, const char*> urls[] = {
      {"a&b?mid=123&x&y", "123", "find 'mid=' from 0 | find '&' from 4 | Mid 8 3"},
      {"mid=123", "123", "find 'mid=' from 0 | find '&' from 0 | Mid 4 3"},
      {"mid=&x", "", "find 'mid=' from 0 | find '&' from 0 | Mid 4 0"},
      {"http://a/?id=1&x", "", "find 'mid=' from 0"}};
  for (const auto& [url, id, effects] : urls) {
    EXPECT_EQ(GetStowraIdFromUrl(url), id);
    EXPECT_EQ(TakeText(), effects);
  }
  const std::string quoted = "find 'filename=\"' from 0";
  const std::string both = quoted + " | find 'filename=' from 0";
  const std::tuple<const char*, const char*, std::string> headers[] = {
      {"x; filename=\"chair.qmf\"", "chair", quoted + " | find '.qmf' from 0 | Mid 13 5"},
      {"x; filename=chair.kmz", "chair",
       both + " | find '.qmf' from 0 | find '.kmz' from 0 | Mid 12 5"},
      {"filename=.qmf", "", both + " | find '.qmf' from 0 | Mid 9 0"},
      {"attachment.qmf", "", both},
      {"filename=\"chair.zip\"", "", quoted + " | find '.qmf' from 0 | find '.kmz' from 0"}};
  for (const auto& [header, name, effects] : headers) {
    EXPECT_EQ(GetFilenameFromContentDisposition(header), name);
    EXPECT_EQ(TakeText(), effects);
  }
}

// What a negative count gives is for the platform to say.
TEST_F(ContentHelpersTest, ANegativeCountIsPassedThrough) {
  EXPECT_EQ(GetFilenameFromContentDisposition("a.qmf; filename=\"chair.kmz\""), kNegativeCount);
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 17 -16"));
  EXPECT_EQ(GetFilenameFromContentDisposition("a.kmz; filename=chair"), kNegativeCount);
  EXPECT_THAT(TakeEffects(), testing::Contains("Mid 16 -15"));
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
