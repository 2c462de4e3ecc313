// SPDX-License-Identifier: MIT
// The body of an upload, byte by byte.

#include "common_stowraapi/content/multipart_upload.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

#include "common_stowraapi/content/upload_config.h"
#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::SetupPayload;
using testing::HasSubstr;
using testing::Not;

std::string Part(const std::string& name, const std::string& value) {
  return "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
}

std::string FilePart(const std::string& file_name, const std::string& type,
                     const std::string& data) {
  return "--B\r\nContent-Disposition: form-data; name=\"binary\"; filename=\"" + file_name +
         "\"\r\nContent-Type: " + type + "\r\n\r\n" + data + "\r\n";
}

// The first parts of every body.
std::string Head(const std::string& name, const std::string& subject) {
  return Part("name", name) + Part("subjectId", subject) + Part("subjectClass", "entity");
}

class MultipartUploadTest : public testing::Test {
 protected:
  void Append(const std::string& data, std::stringstream& out) const {
    Bytes bytes(data);
    SetupPayload(subject, &file, bytes.data(), bytes.size(), "B", &out);
  }

  std::string Body(const std::string& data = "data") const {
    std::stringstream out;
    Append(data, out);
    return out.str();
  }

  ovrant::utils::ovrant_ustring subject = "m42";
  UploadFile file;
};

TEST_F(MultipartUploadTest, WritesAFileAndOneOptionalValue) {
  file.file_path_ = "/home/ann/models/chair.qmf";
  file.zipped_file_path_ = "/tmp/chair.zip";
  file.upload_url_ =
      "http://upload.example/?name=Chair&type=application/vnd.brevix.qmf&task=create";
  file.type_ = "another/type";
  file.name_ = "another name";
  const unsigned char data[] = {0x01, 0x00, 0xFF};
  std::stringstream out;
  SetupPayload("m42", &file, data, sizeof(data), "BrevixClient0385119264730052", &out);
  EXPECT_EQ(out.str(),
            "--BrevixClient0385119264730052\r\n"
            "Content-Disposition: form-data; name=\"name\"\r\n\r\nChair\r\n"
            "--BrevixClient0385119264730052\r\n"
            "Content-Disposition: form-data; name=\"subjectId\"\r\n\r\nm42\r\n"
            "--BrevixClient0385119264730052\r\n"
            "Content-Disposition: form-data; name=\"subjectClass\"\r\n\r\nentity\r\n"
            "--BrevixClient0385119264730052\r\n"
            "Content-Disposition: form-data; name=\"binary\"; filename=\"chair.qmf\"\r\n"
            "Content-Type: application/vnd.brevix.qmf\r\n\r\n" +
                std::string("\x01\0\xFF", 3) +
                "\r\n--BrevixClient0385119264730052\r\n"
                "Content-Disposition: form-data; name=\"task\"\r\n\r\ncreate\r\n"
                "--BrevixClient0385119264730052--\r\n");
}

TEST_F(MultipartUploadTest, WritesOnlyTheObligatoryPartsOfAnEmptyFile) {
  std::stringstream out;
  SetupPayload("", &file, nullptr, 0, "B", &out);
  EXPECT_EQ(out.str(), Head("", "") + FilePart("", "", "") + "--B--\r\n");
}

TEST_F(MultipartUploadTest, AZippedFileTakesTheOtherPathAndSaysSo) {
  file.file_path_ = "chair.qmf";
  file.zipped_file_path_ = "chair.zip";
  EXPECT_EQ(Body(), Head("", "m42") + FilePart("chair.qmf", "", "data") + "--B--\r\n");
  file.zipped_ = true;
  EXPECT_EQ(Body(), Head("", "m42") + FilePart("chair.zip", "", "data") + Part("isZipped", "true") +
                        "--B--\r\n");
  file.zipped_file_path_ = "";
  EXPECT_THAT(Body(), HasSubstr("filename=\"\"\r\n"));
}

TEST_F(MultipartUploadTest, AFileIsNamedAfterTheLastPartOfItsPath) {
  const std::pair<const char*, const char*> paths[] = {{"chair.qmf", "chair.qmf"},
                                                       {"/a/b.c/chair", "chair"},
                                                       {"/a/chair.v1.qmf", "chair.v1.qmf"},
                                                       {"/a/", ""},
                                                       {"", ""},
                                                       {"/a/.qmf", ".qmf"}};
  for (const auto& [path, name] : paths) {
    file.file_path_ = path;
    EXPECT_THAT(Body(), HasSubstr("filename=\"" + std::string(name) + "\"\r\n")) << path;
  }
}

TEST_F(MultipartUploadTest, ValuesComeFromTheUploadUrlAsTheyStandThere) {
  file.upload_url_ = "http://u/?name=a%20b+c= d;\"e\"#f&type= t/t; x=\"y\" &priority=%26";
  EXPECT_EQ(Body(), Head("a%20b+c= d;\"e\"#f", "m42") + FilePart("", " t/t; x=\"y\" ", "data") +
                        Part("priority", "%26") + "--B--\r\n");
}

TEST_F(MultipartUploadTest, TextsAreUtf8AndOnlyTheSubjectEndsAtANul) {
  const std::string begin = "\xC3\xA9\xE6\xA4\x85\xF0\x9F\xAA\x91";
  const std::string text = begin + std::string("\0b", 2);
  subject = Text(text);
  file.file_path_ = Text("/\xC3\xA9/" + text + ".qmf");
  file.upload_url_ =
      Text("?name=" + text + "&type=" + text + "&task=" + text + "&priority=" + text);
  EXPECT_EQ(Body(), Head(text, begin) + FilePart(text + ".qmf", text, "data") + Part("task", text) +
                        Part("priority", text) + "--B--\r\n");
}

TEST_F(MultipartUploadTest, NothingIsEscaped) {
  subject = "a\"b\r\nc\\";
  file.file_path_ = "/x\\y\"z\r\n.qmf";
  file.upload_url_ = "?name=1\r\n--B\r\n2";
  EXPECT_EQ(Body("--B\r\n--B--\r\n"), Head("1\r\n--B\r\n2", "a\"b\r\nc\\") +
                                          FilePart("x\\y\"z\r\n.qmf", "", "--B\r\n--B--\r\n") +
                                          "--B--\r\n");
}

TEST_F(MultipartUploadTest, TheFirstTokenThatBeginsWithTheKeyCounts) {
  const std::pair<const char*, const char*> urls[] = {{"?name=1&name=2", "1"},
                                                      {"?names=x&name=1", "1"},
                                                      {"?filename=x&name=1", "1"},
                                                      {"?NAME=x&Name=y&name=1", "1"},
                                                      {"?name&name=1", "1"},
                                                      {"?x&name=1", "1"},
                                                      {"no question mark&name=1", "1"},
                                                      {"name=1?x", "1"},
                                                      {"name=1&name=2", "1"},
                                                      {"?name=1?name=2", "1"},
                                                      {"?a=b?name=1", "1"},
                                                      {"?&&??name=1&", "1"},
                                                      {"?name=&name=2", ""},
                                                      {"?name==1=", "=1="},
                                                      {"?names=x", ""},
                                                      {"?name", ""},
                                                      {"http://u/name=x", ""},
                                                      {"?%6Eame=x", ""}};
  for (const auto& [url, name] : urls) {
    file.upload_url_ = url;
    EXPECT_EQ(Body().substr(0, Part("name", name).size()), Part("name", name)) << url;
  }
}

TEST_F(MultipartUploadTest, KeysAreMatchedAtTheStartOfTheirToken) {
  file.upload_url_ = "?filetype=x&subtask=x&xpriority=x&tasks=x&types=x&priority2=x";
  EXPECT_EQ(Body(), Head("", "m42") + FilePart("", "", "data") + "--B--\r\n");
}

TEST_F(MultipartUploadTest, AnEmptyOptionalValueLeavesItsPartOut) {
  file.upload_url_ = "?task=&priority=1";
  EXPECT_THAT(Body(), Not(HasSubstr("\"task\"")));
  EXPECT_THAT(Body(), HasSubstr(Part("priority", "1")));
  file.upload_url_ = "?task=1&priority=";
  EXPECT_THAT(Body(), HasSubstr(Part("task", "1")));
  EXPECT_THAT(Body(), Not(HasSubstr("priority")));
}

TEST_F(MultipartUploadTest, TheStreamsFormatDoesNotChangeTheBody) {
  file.zipped_ = true;
  file.upload_url_ = "?name=n&type=t&task=1&priority=2";
  const std::string body = Body();
  std::stringstream right;
  right << std::setw(200) << std::setfill('*');
  std::stringstream left;
  left << std::left << std::setw(99) << std::setfill('*');
  std::stringstream numbers;
  numbers << std::hex << std::showbase << std::uppercase << std::boolalpha << std::unitbuf
          << std::setw(9);
  for (std::stringstream* const out : {&right, &left, &numbers}) {
    Append("data", *out);
    EXPECT_EQ(out->str(), body);
  }
}

}  // namespace
}  // namespace stowra_test
