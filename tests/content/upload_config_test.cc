// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/upload_config.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;

// Parts: success, failure, files.
Parts Upload(const std::string& files = "") {
  return Parts("<upload>",
               {{"success", "<successUrl>http://s/</successUrl>"},
                {"failure", "<failureUrl>http://f/</failureUrl>"},
                {"files", "<files>" + files + "</files>"}},
               "</upload>");
}

// Parts: url, type, zipped, format, width, height, name.
Parts File() {
  return Parts("<file>",
               {{"url", "<uploadUrl>http://u/</uploadUrl>"},
                {"type", "<type>model/qmf</type>"},
                {"zipped", "<zipped>true</zipped>"},
                {"format", "<format>QMF</format>"},
                {"width", "<width>640</width>"},
                {"height", "<height>480</height>"},
                {"name", "<name>Chair</name>"}},
               "</file>");
}

class UploadConfigTest : public testing::Test {
 protected:
  bool Parse(const std::string& document) {
    Bytes bytes(document);
    return config.ParseResponse(bytes.data(), bytes.size());
  }

  bool ParseFile(const Parts& file) {
    config.Clear();
    const bool parsed = Parse(Upload(file.text()).text());
    EXPECT_EQ(config.files_.size(), 1U);
    return parsed;
  }

  UploadConfig config;
};

TEST_F(UploadConfigTest, ReadsUrlsAndFiles) {
  ASSERT_TRUE(Parse(Upload(File().text()).text()));
  EXPECT_EQ(config.success_url_, "http://s/");
  EXPECT_EQ(config.failure_url_, "http://f/");
  ASSERT_EQ(config.files_.size(), 1U);
  const UploadFile& file = config.files_[0];
  EXPECT_EQ(file.upload_url_, "http://u/");
  EXPECT_EQ(file.type_, "model/qmf");
  EXPECT_TRUE(file.zipped_);
  EXPECT_EQ(file.format_, "QMF");
  EXPECT_EQ(file.width_, 640);
  EXPECT_EQ(file.height_, 480);
  EXPECT_EQ(file.name_, "Chair");
  EXPECT_EQ(file.file_path_, "");
  EXPECT_EQ(file.zipped_file_path_, "");
  EXPECT_EQ(file.opaque_value_, 0U);
}

TEST_F(UploadConfigTest, AnEmptyListIsValid) {
  EXPECT_TRUE(Parse(Upload().text()));
  EXPECT_TRUE(config.files_.empty());
  EXPECT_EQ(config.success_url_, "http://s/");
}

TEST_F(UploadConfigTest, FilesKeepTheirOrderWhateverLiesBetween) {
  const auto named = [](const char* name) {
    return File().With("name", "<name>" + std::string(name) + "</name>").text();
  };
  ASSERT_TRUE(Parse("<upload><files><x/>" + named("1") + "<file2/>" + named("2") + named("3") +
                    "</files><failureUrl>f</failureUrl><x/><successUrl>s</successUrl></upload>"));
  ASSERT_EQ(config.files_.size(), 3U);
  EXPECT_EQ(config.files_[0].name_, "1");
  EXPECT_EQ(config.files_[1].name_, "2");
  EXPECT_EQ(config.files_[2].name_, "3");
}

TEST_F(UploadConfigTest, EachUrlAndTheListAreRequired) {
  for (const char* const part : {"success", "failure", "files"}) {
    config.Clear();
    EXPECT_FALSE(Parse(Upload(File().text()).Without(part).text())) << part;
    // The other values were read.
    EXPECT_EQ(config.success_url_.empty(), std::string(part) == "success");
    EXPECT_EQ(config.failure_url_.empty(), std::string(part) == "failure");
    EXPECT_EQ(config.files_.empty(), std::string(part) == "files");
  }
}

TEST_F(UploadConfigTest, AFileNeedsUploadUrlAndType) {
  for (const std::string& part : File().names()) {
    const bool required = part == "url" || part == "type";
    EXPECT_EQ(ParseFile(File().Without(part)), !required) << part;
  }
}

TEST_F(UploadConfigTest, MissingOptionalValuesKeepTheirDefaults) {
  ASSERT_TRUE(ParseFile(
      File().Without("zipped").Without("format").Without("width").Without("height").Without(
          "name")));
  const UploadFile& file = config.files_[0];
  EXPECT_FALSE(file.zipped_);
  EXPECT_EQ(file.format_, "");
  EXPECT_EQ(file.width_, 0);
  EXPECT_EQ(file.height_, 0);
  EXPECT_EQ(file.name_, "");
}

TEST_F(UploadConfigTest, ASizeThatIsNoNumberIsMissing) {
  for (const char* const text : {"", "x", "1.5", "2147483648"}) {
    ASSERT_TRUE(ParseFile(File()
                              .With("width", "<width>" + std::string(text) + "</width>")
                              .With("height", "<height>" + std::string(text) + "</height>")))
        << text;
    EXPECT_EQ(config.files_[0].width_, 0) << text;
    EXPECT_EQ(config.files_[0].height_, 0) << text;
  }
}

TEST_F(UploadConfigTest, ZippedIsTheTextTrueInAnyLetterCase) {
  const std::pair<const char*, bool> texts[] = {
      {"true", true},   {"True", true},      {"TRUE", true}, {"tRuE", true},
      {" true ", true}, {"1", false},        {"yes", false}, {"", false},
      {"false", false}, {"truetrue", false}, {"tru", false}, {"true 1", false}};
  for (const auto& [text, zipped] : texts) {
    ASSERT_TRUE(ParseFile(File().With("zipped", "<zipped>" + std::string(text) + "</zipped>")));
    EXPECT_EQ(config.files_[0].zipped_, zipped) << text;
  }
}

TEST_F(UploadConfigTest, EveryFileStartsFromTheDefaults) {
  ASSERT_TRUE(
      Parse(Upload(File().text() + "<file><uploadUrl>2</uploadUrl><type>t</type></file>").text()));
  ASSERT_EQ(config.files_.size(), 2U);
  EXPECT_TRUE(config.files_[0].zipped_);
  EXPECT_FALSE(config.files_[1].zipped_);
  EXPECT_EQ(config.files_[1].format_, "");
  EXPECT_EQ(config.files_[1].width_, 0);
  EXPECT_EQ(config.files_[1].height_, 0);
  EXPECT_EQ(config.files_[1].name_, "");
}

TEST_F(UploadConfigTest, AnIncompleteFileIsKeptAndTheResultIsFalse) {
  for (const char* const part : {"url", "type"}) {
    config.Clear();
    EXPECT_FALSE(Parse(Upload(File().text() + File().Without(part).text()).text()));
    EXPECT_EQ(config.files_.size(), 2U);
    config.Clear();
    EXPECT_FALSE(Parse(Upload(File().Without(part).text() + File().text()).text()));
    EXPECT_EQ(config.files_.size(), 2U);
    EXPECT_EQ(config.success_url_, "http://s/");
  }
}

TEST_F(UploadConfigTest, NothingIsReadWithoutTheRoot) {
  config.success_url_ = "old";
  for (const std::string& bad :
       {std::string(), std::string("no XML"), "<x>" + Upload(File().text()).text() + "</x>",
        std::string("<Upload/>"), std::string("<upload xmlns='urn:x'><files/></upload>"),
        Upload(File().text()).text() + "<"}) {
    EXPECT_FALSE(Parse(bad)) << bad;
    EXPECT_EQ(config.success_url_, "old") << bad;
    EXPECT_TRUE(config.files_.empty()) << bad;
  }
  EXPECT_FALSE(config.ParseResponse(nullptr, 0));
}

// The reader takes an int. Cut to 32 bits, the first length would be the document's.
TEST_F(UploadConfigTest, ALengthThatNoReaderTakesIsNotCutOff) {
  Bytes bytes(Upload(File().text()).text());
  EXPECT_FALSE(config.ParseResponse(bytes.data(), (1UL << 32) + bytes.size()));
  EXPECT_FALSE(config.ParseResponse(bytes.data(), 1UL << 31));
  EXPECT_TRUE(config.files_.empty());
}

TEST_F(UploadConfigTest, ValuesAreChildrenAndNotAttributes) {
  EXPECT_FALSE(Parse("<upload successUrl='s' failureUrl='f'><files/></upload>"));
  EXPECT_EQ(config.success_url_, "");
}

TEST_F(UploadConfigTest, TheFirstOfSeveralCounts) {
  EXPECT_TRUE(Parse(Upload(File().text())
                        .With("success", "<successUrl>1</successUrl><successUrl>2</successUrl>")
                        .text()));
  EXPECT_EQ(config.success_url_, "1");
  config.Clear();
  EXPECT_TRUE(Parse(Upload().With("files", "<files/><files>" + File().text() + "</files>").text()));
  EXPECT_TRUE(config.files_.empty());
}

TEST_F(UploadConfigTest, ParsingTwiceAppendsFilesAndReplacesUrls) {
  ASSERT_TRUE(Parse(Upload(File().text()).text()));
  ASSERT_TRUE(Parse(Upload(File().With("name", "<name>2</name>").text())
                        .With("success", "<successUrl>new</successUrl>")
                        .text()));
  ASSERT_EQ(config.files_.size(), 2U);
  EXPECT_EQ(config.files_[0].name_, "Chair");
  EXPECT_EQ(config.files_[1].name_, "2");
  EXPECT_EQ(config.success_url_, "new");

  EXPECT_FALSE(Parse(Upload().Without("success").Without("failure").text()));
  EXPECT_EQ(config.success_url_, "new");
  EXPECT_EQ(config.failure_url_, "http://f/");
  EXPECT_FALSE(Parse("no XML"));
  EXPECT_EQ(config.files_.size(), 2U);
}

TEST_F(UploadConfigTest, ClearKeepsTheUrlAndInitSetsIt) {
  config.Init("http://a/");
  EXPECT_EQ(config.url_, "http://a/");
  for (const bool by_init : {false, true}) {
    ASSERT_TRUE(Parse(Upload(File().text() + File().text()).text()));
    by_init ? config.Init("http://b/") : config.Clear();
    EXPECT_EQ(config.url_, by_init ? "http://b/" : "http://a/");
    EXPECT_EQ(config.success_url_, "");
    EXPECT_EQ(config.failure_url_, "");
    EXPECT_TRUE(config.files_.empty());
    EXPECT_GE(config.files_.capacity(), 2U);
  }
}

TEST_F(UploadConfigTest, InitTakesTheObjectsOwnUrls) {
  ASSERT_TRUE(Parse(Upload().text()));
  config.Init(config.success_url_);
  EXPECT_EQ(config.url_, "http://s/");
  config.Init(config.url_);
  EXPECT_EQ(config.url_, "http://s/");
}

}  // namespace
}  // namespace stowra_test
