// SPDX-License-Identifier: MIT
// The multipart functions on the substitute platform: what they ask of clock, generator and text.

#include <ctime>
#include <sstream>
#include <string>

#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::CreateHeaderDictionary;
using ovrant::stowraapiclient::multipartupload::GetBoundaryString;
using ovrant::stowraapiclient::multipartupload::SetupPayload;

class MultipartUploadTest : public ContentTest {
 protected:
  std::string Body() {
    std::stringstream out;
    SetupPayload("m42", &file, nullptr, 0, "B", &out);
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
  file.upload_url_ = "http://a/?name=n&task=t&type=y&priority=p";
  const RecordingText recording;
  const std::string body = Body();
  for (const char* const value : {"\r\n\r\nn\r\n", "\r\n\r\nt\r\n", ": y\r\n", "\r\n\r\np\r\n"}) {
    EXPECT_THAT(body, testing::HasSubstr(value));
  }
  EXPECT_THAT(TakeEffects(), testing::Contains("TokenizeToVector '&?'"));
}

// Whatever precedes and follows, the parameter is cut out at its length.
TEST_F(MultipartUploadTest, ValuesAreWhatFollowsTheKey) {
  for (const char* const url :
       {"task=t", "?task=t", "&&task=t&&", "http://a/?ta&task=t&x", "a?task=t&task=u?task=v",
        "task&task&&?tas&TASK=u&multitask=u&task=t"}) {
    file.upload_url_ = url;
    EXPECT_THAT(Body(), testing::HasSubstr("name=\"task\"\r\n\r\nt\r\n")) << url;
  }
  for (const char* const url :
       {"", "task", "TASK=t", "http://a/task=t", "xtask=t", "task=&task=t"}) {
    file.upload_url_ = url;
    EXPECT_THAT(Body(), testing::Not(testing::HasSubstr("name=\"task\""))) << url;
  }
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
