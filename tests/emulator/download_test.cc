// SPDX-License-Identifier: MIT

#include <set>

#include "emulator/http_date.h"
#include "emulator/range.h"
#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

constexpr const char* kFile = "/download?mid=m-1001&rtyp=k2";

class DownloadTest : public ClientTest {
 protected:
  std::string NameOf(const std::string& mid, const std::string& rtyp) {
    return Get("/download?mid=" + mid + "&rtyp=" + rtyp).Header("Content-Disposition");
  }
};

TEST_F(DownloadTest, DownloadsEveryRenditionInTheFeed) {
  const XmlElement feed = GetFeed("/search?count=100");
  std::set<std::string> files;
  std::size_t downloads = 0;
  for (const XmlElement* entry : Entries(feed)) {
    for (const XmlElement* content : Contents(*entry)) {
      const RawResponse response = Get(content->Attribute("url"));
      EXPECT_EQ(response.Header("Content-Type"), content->Attribute("type"));
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
  EXPECT_TRUE(GetFrom(Emulator().url(), kFile).body == Get(kFile).body);
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

TEST(HttpDateTest, NamesTheDay) {
  EXPECT_EQ(HttpDate("2024-01-31T09:00:00Z"), "Wed, 31 Jan 2024 09:00:00 GMT");
  EXPECT_EQ(HttpDate("2024-02-29T23:59:59Z"), "Thu, 29 Feb 2024 23:59:59 GMT");
  EXPECT_EQ(HttpDate("yesterday"), "");
  EXPECT_EQ(HttpDate(""), "");
}

class RangeTest : public ClientTest {
 protected:
  RawResponse GetRange(const std::string& range, int status, const std::string& if_range = "",
                       const std::string& target = kFile) {
    SCOPED_TRACE(range);
    const std::string condition = if_range.empty() ? "" : "If-Range: " + if_range + "\r\n";
    return Get(target, status, "Range: " + range + "\r\n" + condition);
  }
};

TEST_F(RangeTest, AnswersPartOfAFile) {
  struct Row {
    std::string range;
    std::size_t first;
    std::size_t last;
  };
  const std::string whole = Get(kFile).body;
  const std::size_t end = whole.size() - 1;
  for (const Row& row : {Row{"bytes=0-0", 0, 0},
                         {"bytes=10-19", 10, 19},
                         {"bytes=100-", 100, end},
                         {"bytes=-7", end - 6, end},
                         {"bytes=5-99999999", 5, end},
                         {"bytes=-99999999999999999999", 0, end},
                         {"BYTES=1-2", 1, 2}}) {
    const RawResponse part = GetRange(row.range, 206);
    const std::size_t size = row.last - row.first + 1;
    EXPECT_EQ(part.Header("Content-Range"), "bytes " + std::to_string(row.first) + "-" +
                                                std::to_string(row.last) + "/" +
                                                std::to_string(whole.size()))
        << row.range;
    EXPECT_EQ(part.Header("Content-Length"), std::to_string(size)) << row.range;
    EXPECT_TRUE(part.body == whole.substr(row.first, size)) << row.range;
  }
}

TEST_F(RangeTest, RefusesRangeBeyondTheEnd) {
  const std::string size = std::to_string(Get(kFile).body.size());
  const std::vector<std::string> ranges = {"bytes=" + size + "-", "bytes=" + size + "-" + size,
                                           "bytes=99999999-999999999", "bytes=-0",
                                           "bytes=99999999999999999999-"};
  for (const std::string& range : ranges) {
    const RawResponse refusal = GetRange(range, 416);
    EXPECT_EQ(refusal.Header("Content-Range"), "bytes */" + size) << range;
    EXPECT_THAT(refusal.body, HasSubstr("has only " + size + " bytes"));
  }
}

TEST_F(RangeTest, AnswersWholeFileToWhatItCannotRead) {
  const std::string whole = Get(kFile).body;
  for (const char* range : {"bytes=0-1,5-6", "lines=1-2", "bytes=5-1", "bytes=x-1", "bytes=1-x",
                            "bytes=", "bytes=-", "bytes", "bytes=--1", "bytes=1"}) {
    const RawResponse response = GetRange(range, 200);
    EXPECT_EQ(response.Header("Content-Range"), "") << range;
    EXPECT_TRUE(response.body == whole) << range;
  }
}

TEST_F(RangeTest, IfRangeDecidesBetweenPartAndWhole) {
  const RawResponse whole = Get(kFile);
  const std::string etag = whole.Header("ETag");
  EXPECT_THAT(etag, MatchesRegex("\"[^\"]+\""));
  const std::string date = whole.Header("Last-Modified");
  EXPECT_EQ(date, "Mon, 01 Jan 2024 09:00:00 GMT");
  EXPECT_EQ(whole.Header("Accept-Ranges"), "bytes");
  GetRange("bytes=0-3", 206, etag);
  GetRange("bytes=0-3", 206, date);
  GetRange("bytes=0-3", 200, "\"other\"");
  GetRange("bytes=0-3", 200, "W/" + etag);
  GetRange("bytes=0-3", 200, "Tue, 02 Jan 2024 09:00:00 GMT");
}

TEST_F(RangeTest, EveryFileHasItsOwnEtag) {
  const std::string first = Get(kFile).Header("ETag");
  EXPECT_EQ(Get(kFile).Header("ETag"), first);
  EXPECT_NE(Get("/download?mid=m-1001&rtyp=z").Header("ETag"), first);
  EXPECT_NE(Get("/thumbnail?mid=m-1001&rtyp=st").Header("ETag"),
            Get("/thumbnail?mid=m-1001&rtyp=lt").Header("ETag"));
}

TEST_F(RangeTest, PicturesAndUploadsHaveRanges) {
  EXPECT_EQ(GetRange("bytes=1-3", 206, "", "/thumbnail?mid=c-1").body, "PNG");
  ResponseOf(client_.Post("/upload", FormOf("Ten", "0123456789", "text/plain")), 201);
  const char* file = "/download?mid=m-1101&rtyp=o";
  EXPECT_EQ(GetRange("bytes=3-5", 206, "", file).body, "345");
  EXPECT_EQ(GetRange("bytes=-4", 206, "", file).body, "6789");
  EXPECT_EQ(GetRange("bytes=3-5", 206, Get(file).Header("ETag"), file).body, "345");
}

TEST_F(RangeTest, OtherRoutesIgnoreRanges) {
  const RawResponse whole = GetRange("bytes=0-3", 200, "", "/user-info");
  EXPECT_EQ(whole.Header("Accept-Ranges"), "none");
  EXPECT_EQ(whole.body, Get("/user-info").body);
  const auto head = ResponseOf(client_.Head(kFile, {{"Range", "bytes=0-3"}}));
  EXPECT_EQ(head.get_header_value("Content-Length"), std::to_string(Get(kFile).body.size()));
}

TEST_F(RangeTest, PartsTakeFaults) {
  EXPECT_FALSE(client_.Get(std::string(kFile) + "&fault=truncate", {{"Range", "bytes=0-99"}}));
  GetRange("bytes=0-99", 206, "", std::string(kFile) + "&fault=drip:0");
}

}  // namespace
}  // namespace stowra_emulator
