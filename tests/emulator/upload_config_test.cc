// SPDX-License-Identifier: MIT

#include "tests/emulator/content_fixture.h"
#include "tests/support/text.h"

namespace stowra_emulator {
namespace {

class UploadConfigTest : public ContentTest {
 protected:
  XmlElement GetConfig(const std::string& query = "") {
    const RawResponse response = Get("/upload-config" + query);
    EXPECT_EQ(response.Header("Content-Type"), "application/xml");
    XmlElement config = ParseXml(response.body);
    EXPECT_EQ(config.name, "upload");
    return config;
  }

  // The only file in the configuration.
  XmlElement GetFile(const std::string& query) {
    return GetConfig(query).Child("files").Child("file");
  }
};

TEST_F(UploadConfigTest, TellsWhatToUploadAndWhere) {
  const XmlElement config = GetConfig();
  EXPECT_EQ(config.Child("successUrl").text, emulator_.url() + "/upload-succeeded");
  EXPECT_EQ(config.Child("failureUrl").text, emulator_.url() + "/upload-failed");
  const XmlElement& file = config.Child("files").Child("file");
  EXPECT_EQ(file.Child("uploadUrl").text,
            emulator_.url() +
                "/upload?name=Untitled&type=application/vnd.brevix.qmf&task=create&priority=1");
  EXPECT_EQ(file.Child("type").text, "application/vnd.brevix.qmf");
  EXPECT_EQ(file.Child("zipped").text, "false");
  EXPECT_EQ(file.Child("format").text, "qmf");
  EXPECT_EQ(file.Child("width").text, "256");
  EXPECT_EQ(file.Child("height").text, "192");
  EXPECT_EQ(file.Child("name").text, "Untitled");
}

TEST_F(UploadConfigTest, TakesEveryValueFromTheQuery) {
  const XmlElement file = GetFile(
      "?name=Zo%C3%AB%20%26%20%22Co%22&type=application/vnd.pellamy.kmz&task=up+date&priority=7"
      "&zipped=true");
  EXPECT_EQ(file.Child("uploadUrl").text,
            emulator_.url() +
                "/upload?name=Zo%C3%AB%20%26%20%22Co%22&type=application/vnd.pellamy.kmz"
                "&task=up%20date&priority=7");
  EXPECT_EQ(file.Child("zipped").text, "true");
  EXPECT_EQ(file.Child("format").text, "kmz");
  EXPECT_EQ(file.Child("name").text, "Zoë & \"Co\"");
}

TEST_F(UploadConfigTest, OmitsEmptyTaskAndPriority) {
  EXPECT_EQ(GetFile("?task=&priority=&zipped=false").Child("uploadUrl").text,
            emulator_.url() + "/upload?name=Untitled&type=application/vnd.brevix.qmf");
}

TEST_F(UploadConfigTest, NumbersTheNamesOfSeveralFiles) {
  const XmlElement config = GetConfig("?name=Chair&files=20");
  const auto files = config.Child("files").Children("file");
  ASSERT_THAT(files, SizeIs(20));
  EXPECT_EQ(files[0]->Child("name").text, "Chair");
  EXPECT_EQ(files[1]->Child("name").text, "Chair 2");
  EXPECT_THAT(files[19]->Child("uploadUrl").text, HasSubstr("?name=Chair%2020&"));
  EXPECT_THAT(GetConfig("?files=0").Child("files").children, SizeIs(0));
}

TEST_F(UploadConfigTest, RefusesBadParameters) {
  for (const std::string& query : stowra_test::Split(
           "files=21|files=-1|files=|files=x|zipped=yes|zipped=|zipped=TRUE|title=x")) {
    const std::string name = query.substr(0, query.find('='));
    EXPECT_THAT(GetError("/upload-config?" + query, 400), HasSubstr("'" + name + "'")) << query;
  }
}

}  // namespace
}  // namespace stowra_emulator
