// SPDX-License-Identifier: MIT
// What a configuration is read from, and copies of it and of its files.

#include "common_stowraapi/content/upload_config.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/content/feed_text.h"
#include "tests/content/fields.h"

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
  ASSERT_EQ(Fields(config), std::make_tuple("", "http://s/", "http://f/", 1U));
  EXPECT_EQ(Fields(config.files_[0]),
            std::make_tuple("http://u/", "model/qmf", true, "Chair", "QMF", 640, 480, "", 0U, ""));
}

TEST_F(UploadConfigTest, FilesKeepTheirOrderWhateverLiesBetween) {
  const auto named = [](const char* name) { return File().With("name", Tag("name", name)).text(); };
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

TEST_F(UploadConfigTest, EmptyTextsArePresent) {
  EXPECT_TRUE(ParseFile(File().With("url", "<uploadUrl/>").With("type", "<type/>")));
  EXPECT_TRUE(
      Parse(Upload().With("success", "<successUrl/>").With("failure", "<failureUrl/>").text()));
  EXPECT_EQ(config.success_url_, "");
  EXPECT_EQ(config.failure_url_, "");
}

TEST_F(UploadConfigTest, ASizeThatIsNoNumberIsMissing) {
  for (const char* const text : {"", "x", "1.5", "2147483648"}) {
    const Parts file = File().With("width", Tag("width", text)).With("height", Tag("height", text));
    ASSERT_TRUE(ParseFile(file)) << text;
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
    ASSERT_TRUE(ParseFile(File().With("zipped", Tag("zipped", text))));
    EXPECT_EQ(config.files_[0].zipped_, zipped) << text;
  }
}

TEST_F(UploadConfigTest, EveryFileStartsFromTheDefaults) {
  ASSERT_TRUE(
      Parse(Upload(File().text() + "<file><uploadUrl>2</uploadUrl><type>t</type></file>").text()));
  ASSERT_EQ(config.files_.size(), 2U);
  EXPECT_TRUE(config.files_[0].zipped_);
  EXPECT_EQ(Fields(config.files_[1]), std::make_tuple("2", "t", false, "", "", 0, 0, "", 0U, ""));
}

TEST_F(UploadConfigTest, AnIncompleteFileIsKeptAndTheResultIsFalse) {
  for (const char* const part : {"url", "type"}) {
    const std::string bad = File().Without(part).text();
    for (const std::string& files : {File().text() + bad, bad + File().text()}) {
      config.Clear();
      EXPECT_FALSE(Parse(Upload(files).text())) << files;
      EXPECT_EQ(Fields(config), std::make_tuple("", "http://s/", "http://f/", 2U)) << files;
    }
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
  EXPECT_FALSE(Parse("no XML"));
  EXPECT_EQ(Fields(config), std::make_tuple("", "new", "http://f/", 2U));
}

TEST_F(UploadConfigTest, ClearKeepsTheUrlAndInitSetsIt) {
  config.Init("http://a/");
  EXPECT_EQ(config.url_, "http://a/");
  for (const bool by_init : {false, true}) {
    ASSERT_TRUE(Parse(Upload(File().text() + File().text()).text()));
    by_init ? config.Init("http://b/") : config.Clear();
    EXPECT_EQ(Fields(config), std::make_tuple(by_init ? "http://b/" : "http://a/", "", "", 0U));
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

UploadFile Filled() {
  UploadFile file;
  file.upload_url_ = "upload url";
  file.type_ = "type";
  file.zipped_ = true;
  file.name_ = "name";
  file.format_ = "format";
  file.width_ = 640;
  file.height_ = -480;
  file.file_path_ = "file path";
  file.opaque_value_ = 0xFEDCBA9876543210U;
  file.zipped_file_path_ = "zipped file path";
  return file;
}

constexpr std::tuple kFilled("upload url", "type", true, "name", "format", 640, -480, "file path",
                             0xFEDCBA9876543210U, "zipped file path");

TEST(UploadFileTest, ACopyHasAllTenMembersAndIsIndependent) {
  UploadFile original = Filled();
  const UploadFile copy(original);
  EXPECT_EQ(Fields(original), kFilled);
  original.name_ = "other";
  original.opaque_value_ = 1;
  EXPECT_EQ(Fields(copy), kFilled);
}

TEST(UploadFileTest, AssignmentCopiesAllTenMembersAndGivesTheTarget) {
  const UploadFile original = Filled();
  UploadFile target;
  EXPECT_EQ(&(target = original), &target);
  EXPECT_EQ(Fields(target), kFilled);
  EXPECT_EQ(Fields(original), kFilled);
  target = UploadFile();
  EXPECT_EQ(Fields(target), Fields(UploadFile()));
}

TEST(UploadFileTest, AssignmentToItselfChangesNothing) {
  UploadFile file = Filled();
  const UploadFile& same = file;
  file = same;
  EXPECT_EQ(Fields(file), kFilled);
}

TEST(UploadFileTest, AConfigurationIsCopiedWithItsFiles) {
  UploadConfig original;
  original.Init("url");
  original.success_url_ = "s";
  original.failure_url_ = "f";
  original.files_.push_back(Filled());
  const UploadConfig copy(original);
  UploadConfig target;
  EXPECT_EQ(&(target = original), &target);
  original.Clear();
  for (const UploadConfig* const config : {&copy, &std::as_const(target)}) {
    ASSERT_EQ(Fields(*config), std::make_tuple("url", "s", "f", 1U));
    EXPECT_EQ(Fields(config->files_[0]), kFilled);
  }
}

}  // namespace
}  // namespace stowra_test
