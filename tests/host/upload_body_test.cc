// SPDX-License-Identifier: MIT
#include "host/upload_body.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "common_stowraapi/content/multipart_upload.h"
#include "host/string_sink.h"

namespace stowra {
namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::SetupPayload;

TEST(UploadBodyTest, EqualsBodyOfOrdinaryStream) {
  UploadFile file;
  file.upload_url_ = "http://u/?name=a&type=b&task=c";
  file.zipped_file_path_ = "/x/chair.qmf.zip";
  file.zipped_ = true;
  for (const std::size_t size : {0U, 1U, 5000U, 100000U}) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 7);
    std::stringstream expected;
    SetupPayload("m42", &file, reinterpret_cast<const unsigned char*>(content.data()), size,
                 "Boundary", &expected);
    EXPECT_EQ(MakeUploadBody("m42", file, content, "Boundary"), expected.str()) << size;
  }
}

TEST(StringSinkTest, AppendsAllThatAStreamWrites) {
  std::string text = "a";
  StringSink sink(text);
  std::ostream out(&sink);
  out.put('b');
  out.put('\xFF');
  out << 42;
  out.write("c\0d", 3);
  EXPECT_TRUE(out.good());
  EXPECT_EQ(text, std::string("ab\xFF"
                              "42c\0d",
                              8));
}

}  // namespace
}  // namespace stowra
