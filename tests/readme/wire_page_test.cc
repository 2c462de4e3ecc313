// SPDX-License-Identifier: MIT
// The samples of docs/guide/wire.md are what the classes read and write.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/services/item_map.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/support/corpora.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using namespace ovrant::stowraapiclient;
using ovrant::utils::ovrant_ustring;

// The code block of that number below a heading, from 0.
std::string Sample(const std::string& heading, int number = 0) {
  const std::string page = ReadFile(STOWRA_WIRE_PAGE);
  std::size_t at = page.find("\n## " + heading + "\n");
  for (int fences = 0; at != std::string::npos && fences <= 2 * number; ++fences) {
    at = page.find("\n```", at + 1);
  }
  if (at == std::string::npos) return "";
  const std::size_t begin = page.find('\n', at + 1) + 1;
  return page.substr(begin, page.find("\n```", begin) + 1 - begin);
}

TEST(WirePageTest, UserIsRead) {
  ovrant::webservices::UserInfoQuery query;
  EXPECT_TRUE(query.ParseResponse(ovrant_ustring(Sample("Who is signed in"))));
  EXPECT_EQ(query.GetUserInfoValue("locale"), "sv-SE");
}

TEST(WirePageTest, UpdateIsRead) {
  ovrant::webservices::UpdateQuery query;
  EXPECT_TRUE(query.ParseResponse(ovrant_ustring(Sample("Updates"))));
  EXPECT_EQ(query.message_.id, 42);
  EXPECT_EQ(query.data_files_.size(), 1U);
}

TEST(WirePageTest, ExtensionsAreRead) {
  EXPECT_TRUE(ovrant::json::Document().Load(ovrant_ustring(Sample("Extensions"))));
  auto items = ovrant::extensionstoreapi::ReadItemMap(ovrant_ustring(Sample("Extensions", 1)));
  EXPECT_EQ(items["roof-tools"].version, 2.5F);
  EXPECT_TRUE(items["roof-tools"].enabled);
}

TEST(WirePageTest, FeedIsRead) {
  Bytes feed(Sample("Search"));
  ContentQuery query;
  query.max_qmf_version_ = 8;
  ASSERT_TRUE(query.Load(feed.data(), feed.length()));
  ASSERT_EQ(query.items_.size(), 1U);
  EXPECT_TRUE(query.NextValid());
  EXPECT_EQ(query.items_.front()->download_format_, kQmfDownload);
}

TEST(WirePageTest, UploadIsReadAndWritten) {
  Bytes document(Sample("Upload configuration"));
  UploadConfig config;
  ASSERT_TRUE(config.ParseResponse(document.data(), document.size()));
  ASSERT_EQ(config.files_.size(), 1U);
  UploadFile& file = config.files_.front();
  file.file_path_ = "models/chair.qmf";

  std::stringstream body;
  const unsigned char data[] = {'Q', 'M', 'F'};
  multipartupload::SetupPayload("m42", &file, data, sizeof(data), "BrevixClient0385119264730052",
                                &body);
  ovrant_ustring text(body.str());
  text.replace_all("\r\n", "\n");
  EXPECT_EQ(text.utf8(), Sample("Upload"));
}

TEST(WirePageTest, NamesAreFound) {
  EXPECT_EQ(GetStowraIdFromUrl("http://127.0.0.1:8080/download?mid=m-1001&rtyp=k2"), "m-1001");
  EXPECT_EQ(GetFilenameFromContentDisposition("attachment; filename=\"Oak Chair.qmf\""),
            "Oak Chair");
  EXPECT_NE(
      ReadFile(STOWRA_WIRE_PAGE).find("`attachment; filename=\"Oak Chair.qmf\"` | `Oak Chair` |"),
      std::string::npos);
}

}  // namespace
}  // namespace stowra_test
