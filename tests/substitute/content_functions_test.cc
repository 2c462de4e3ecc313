// SPDX-License-Identifier: MIT
// The helpers and the multipart functions of the content service: what they ask of clock, generator
// and text.

#include <ctime>
#include <sstream>
#include <string>
#include <tuple>

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::GetFilenameFromContentDisposition;
using ovrant::stowraapiclient::GetStowraIdFromUrl;
using ovrant::stowraapiclient::multipartupload::CreateHeaderDictionary;
using ovrant::stowraapiclient::multipartupload::GetBoundaryString;

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

class MultipartUploadTest : public ContentTest {
 protected:
  std::string Body() {
    std::stringstream out;
    ovrant::stowraapiclient::multipartupload::SetupPayload("m42", &file, nullptr, 0, "B", &out);
    return out.str();
  }

  UploadFile file;
};

unsigned int Seconds() { return static_cast<unsigned int>(std::time(nullptr)); }

TEST_F(MultipartUploadTest, ABoundaryIsSeededWithTheSecondsAndDrawsSixteenDigits) {
  for (int i = 0; i < 2; ++i) {
    const unsigned int before = Seconds();
    const std::string boundary = GetBoundaryString();
    const unsigned int after = Seconds();
    EXPECT_EQ(boundary, "BrevixClient0741852963074185");

    const std::vector<std::string> effects = TakeEffects();
    ASSERT_EQ(effects.size(), 17U);
    ASSERT_EQ(effects[0].substr(0, 8), "SetSeed ");
    const unsigned long seed = std::stoul(effects[0].substr(8));
    EXPECT_GE(seed, before);
    EXPECT_LE(seed, after);
    for (std::size_t draw = 1; draw < effects.size(); ++draw) {
      EXPECT_EQ(effects[draw], "GetValue 0 9");
    }
  }
}

TEST_F(MultipartUploadTest, AFileIsNamedByThePlatformWithItsExtension) {
  file.file_path_ = "/a/chair.qmf";
  file.zipped_file_path_ = "/b/chair.zip";
  const RecordingText recording;
  EXPECT_THAT(Body(), testing::HasSubstr("filename=\"chair.qmf\""));
  EXPECT_THAT(TakeText(), testing::HasSubstr("GetFileName '/a/chair.qmf' with extension"));
  file.zipped_ = true;
  EXPECT_THAT(Body(), testing::HasSubstr("filename=\"chair.zip\""));
  EXPECT_THAT(TakeText(), testing::HasSubstr("GetFileName '/b/chair.zip' with extension"));
}

TEST_F(MultipartUploadTest, UploadUrlIsSplitAtBothCharacters) {
  file.upload_url_ = "http://a/?&x&TASK=u&name=n&task=t?type=y&priority=p&task=u";
  const RecordingText recording;
  const std::string body = Body();
  for (const char* const value : {"\r\n\r\nn\r\n", "\r\n\r\nt\r\n", ": y\r\n", "\r\n\r\np\r\n"}) {
    EXPECT_THAT(body, testing::HasSubstr(value));
  }
  EXPECT_THAT(TakeEffects(), testing::Contains("TokenizeToVector '&?'"));
}

TEST_F(MultipartUploadTest, LengthIsFormattedAsAnInt) {
  const RecordingText recording;
  EXPECT_EQ(CreateHeaderDictionary("B", 3000000000UL)["Content-Length"], "-1294967296");
  EXPECT_EQ(TakeText(), "Format '%i'");
}

TEST_F(MultipartUploadTest, OnlyBoundariesTouchTheGenerator) {
  Body();
  CreateHeaderDictionary("B", 1);
  EXPECT_EQ(TakeText(), "");
}

}  // namespace
}  // namespace stowra_substitute
