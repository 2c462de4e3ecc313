// SPDX-License-Identifier: MIT
// Copies of a file of an upload.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common_stowraapi/content/upload_config.h"
#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;

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

void ExpectFilled(const UploadFile& file) {
  EXPECT_EQ(file.upload_url_, "upload url");
  EXPECT_EQ(file.type_, "type");
  EXPECT_TRUE(file.zipped_);
  EXPECT_EQ(file.name_, "name");
  EXPECT_EQ(file.format_, "format");
  EXPECT_EQ(file.width_, 640);
  EXPECT_EQ(file.height_, -480);
  EXPECT_EQ(file.file_path_, "file path");
  EXPECT_EQ(file.opaque_value_, 0xFEDCBA9876543210U);
  EXPECT_EQ(file.zipped_file_path_, "zipped file path");
}

TEST(UploadFileTest, ACopyHasAllTenMembers) {
  const UploadFile original = Filled();
  const UploadFile copy(original);
  ExpectFilled(copy);
  ExpectFilled(original);
}

TEST(UploadFileTest, AssignmentCopiesAllTenMembersAndGivesTheTarget) {
  const UploadFile original = Filled();
  UploadFile target;
  EXPECT_EQ(&(target = original), &target);
  ExpectFilled(target);
  ExpectFilled(original);

  target = UploadFile();
  EXPECT_EQ(target.upload_url_, "");
  EXPECT_FALSE(target.zipped_);
  EXPECT_EQ(target.height_, 0);
  EXPECT_EQ(target.opaque_value_, 0U);
}

TEST(UploadFileTest, AssignmentToItselfChangesNothing) {
  UploadFile file = Filled();
  const UploadFile& same = file;
  file = same;
  ExpectFilled(file);
}

TEST(UploadFileTest, ACopyIsIndependent) {
  UploadFile original = Filled();
  const UploadFile copy = original;
  original.name_ = "other";
  original.opaque_value_ = 1;
  ExpectFilled(copy);
}

TEST(UploadFileTest, AGrowingListKeepsItsFiles) {
  std::vector<UploadFile> files;
  for (int i = 0; i < 20; ++i) files.push_back(Filled());
  for (const UploadFile& file : files) ExpectFilled(file);
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
  for (const UploadConfig* const config : {&copy, const_cast<const UploadConfig*>(&target)}) {
    EXPECT_EQ(config->url_, "url");
    EXPECT_EQ(config->success_url_, "s");
    EXPECT_EQ(config->failure_url_, "f");
    ASSERT_EQ(config->files_.size(), 1U);
    ExpectFilled(config->files_[0]);
  }
}

}  // namespace
}  // namespace stowra_test
