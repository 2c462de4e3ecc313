// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;

class DownloadTest : public ContentTest {
 protected:
  std::string NameOf(const std::string& mid, const std::string& rtyp) {
    return Get("/download?mid=" + mid + "&rtyp=" + rtyp).get_header_value("Content-Disposition");
  }
};

TEST_F(DownloadTest, DownloadsEveryRenditionInTheFeed) {
  const XmlElement feed = GetFeed("/search?count=100");
  std::set<std::string> files;
  std::size_t downloads = 0;
  for (const XmlElement* entry : Entries(feed)) {
    for (const XmlElement* content :
         entry->Child(kMedia + std::string("group")).Children(kMedia + std::string("content"))) {
      const httplib::Response response = Get(content->Attribute("url"));
      EXPECT_EQ(response.get_header_value("Content-Type"), content->Attribute("type"));
      EXPECT_GE(response.body.size(), 2048u);
      EXPECT_LE(response.body.size(), 61440u);
      EXPECT_EQ(std::set<char>(response.body.begin(), response.body.end()).size(), 256u);
      files.insert(response.body);
      ++downloads;
    }
  }
  EXPECT_GT(downloads, 250u);
  EXPECT_EQ(files.size(), downloads) << "no two files are the same";
}

TEST_F(DownloadTest, GivesTheSameFileEveryTime) {
  const std::string file = Get("/download?mid=m-1001&rtyp=k2").body;
  const Emulator other;
  const httplib::Result again = httplib::Client(other.url()).Get("/download?mid=m-1001&rtyp=k2");
  ASSERT_TRUE(again);
  EXPECT_EQ(file.size(), again->body.size());
  EXPECT_TRUE(file == again->body);
}

TEST_F(DownloadTest, NamesFileAfterTheModel) {
  EXPECT_EQ(NameOf("m-1001", "s8"), "attachment; filename=\"Oak Chair.qmf\"");
  EXPECT_EQ(NameOf("m-1001", "k2"), "attachment; filename=\"Oak Chair.kmz\"");
  EXPECT_EQ(NameOf("m-1001", "z"), "attachment; filename=\"Oak Chair.zip\"");
}

TEST_F(DownloadTest, FileNameKeepsScriptsAndDropsUnsafeBytes) {
  EXPECT_EQ(NameOf("m-1041", "s13"), "attachment; filename=\"木の椅子.qmf\"");
  EXPECT_EQ(NameOf("m-1082", "k2"), "attachment; filename=\"Table 34 Duo.kmz\"");
  EXPECT_EQ(NameOf("m-1087", "s"), "attachment; filename=\"House {A|B}  Garden.qmf\"");
}

TEST_F(DownloadTest, RefusesUnknownModelRenditionAndParameter) {
  EXPECT_THAT(GetError("/download?mid=m-1004&rtyp=s8", 404), HasSubstr("no rendition 's8'"));
  EXPECT_THAT(GetError("/download?mid=m-1001&rtyp=k", 404), HasSubstr("no rendition 'k'"));
  EXPECT_THAT(GetError("/download?mid=m-9999&rtyp=k2", 404), HasSubstr("no model 'm-9999'"));
  EXPECT_THAT(GetError("/download?mid=c-1&rtyp=k2", 404), HasSubstr("no model 'c-1'"));
  EXPECT_THAT(GetError("/download?mid=m-1001", 400), HasSubstr("'rtyp' is missing"));
  EXPECT_THAT(GetError("/download?rtyp=k2", 400), HasSubstr("'mid' is missing"));
  EXPECT_THAT(GetError("/download?mid=m-1001&rtyp=k2&as=x", 400), HasSubstr("'as'"));
}

TEST_F(DownloadTest, ContentRoutesTakeFaults) {
  Get("/download?mid=m-1001&rtyp=k2&fault=status:503", 503);
  EXPECT_FALSE(client_.Get("/download?mid=m-1001&rtyp=k2&fault=truncate"));
  EXPECT_FALSE(client_.Get("/thumbnail?mid=m-1001&fault=reset"));
  Get("/search?q=chair&fault=status:500", 500);
  Get("/search.html?fault=drip:0");
  EXPECT_THAT(GetFeed("/search?fault=drip:0").Link("next"), testing::Not(HasSubstr("fault")));
}

}  // namespace
}  // namespace stowra_emulator
