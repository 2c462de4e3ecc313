// SPDX-License-Identifier: MIT
#include "emulator/range.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <string>
#include <vector>

#include "emulator/http_date.h"
#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kFile = "/download?mid=m-1001&rtyp=k2";

TEST(HttpDateTest, NamesTheDay) {
  EXPECT_EQ(HttpDate("2024-01-31T09:00:00Z"), "Wed, 31 Jan 2024 09:00:00 GMT");
  EXPECT_EQ(HttpDate("2024-02-29T23:59:59Z"), "Thu, 29 Feb 2024 23:59:59 GMT");
  EXPECT_EQ(HttpDate("yesterday"), "");
  EXPECT_EQ(HttpDate(""), "");
}

class RangeTest : public ContentTest {
 protected:
  httplib::Response GetRange(const std::string& range, int status, const std::string& if_range = "",
                             const std::string& target = kFile) {
    httplib::Headers headers = {{"Range", range}};
    if (!if_range.empty()) headers.emplace("If-Range", if_range);
    const httplib::Result result = client_.Get(target, headers);
    EXPECT_TRUE(result) << range;
    if (!result) return httplib::Response();
    EXPECT_EQ(result->status, status) << range;
    return *result;
  }
};

TEST_F(RangeTest, AnswersPartOfAFile) {
  const std::string whole = Get(kFile).body;
  const std::string size = std::to_string(whole.size());
  const std::string last = std::to_string(whole.size() - 1);
  struct Case {
    std::string range;
    std::string content_range;
    std::size_t offset;
    std::size_t length;
  };
  const Case cases[] = {
      {"bytes=0-0", "bytes 0-0/" + size, 0, 1},
      {"bytes=10-19", "bytes 10-19/" + size, 10, 10},
      {"bytes=100-", "bytes 100-" + last + "/" + size, 100, whole.size() - 100},
      {"bytes=-7", "bytes " + std::to_string(whole.size() - 7) + "-" + last + "/" + size,
       whole.size() - 7, 7},
      {"bytes=5-99999999", "bytes 5-" + last + "/" + size, 5, whole.size() - 5},
      {"bytes=-99999999999999999999", "bytes 0-" + last + "/" + size, 0, whole.size()},
      {"BYTES=1-2", "bytes 1-2/" + size, 1, 2},
  };
  for (const Case& wanted : cases) {
    const httplib::Response part = GetRange(wanted.range, 206);
    EXPECT_EQ(part.get_header_value("Content-Range"), wanted.content_range);
    EXPECT_EQ(part.get_header_value("Content-Length"), std::to_string(wanted.length));
    EXPECT_TRUE(part.body == whole.substr(wanted.offset, wanted.length)) << wanted.range;
  }
}

TEST_F(RangeTest, RefusesRangeBeyondTheEnd) {
  const std::string size = std::to_string(Get(kFile).body.size());
  const std::vector<std::string> ranges = {"bytes=" + size + "-", "bytes=99999999-999999999",
                                           "bytes=-0", "bytes=99999999999999999999-"};
  for (const std::string& range : ranges) {
    const httplib::Response refusal = GetRange(range, 416);
    EXPECT_EQ(refusal.get_header_value("Content-Range"), "bytes */" + size) << range;
    EXPECT_THAT(refusal.body, HasSubstr("has only " + size + " bytes"));
  }
}

TEST_F(RangeTest, AnswersWholeFileToWhatItCannotRead) {
  const std::string whole = Get(kFile).body;
  for (const char* range : {"bytes=0-1,5-6", "lines=1-2", "bytes=5-1", "bytes=x-1", "bytes=1-x",
                            "bytes=", "bytes=-", "bytes", "bytes=--1", "bytes=1"}) {
    const httplib::Response response = GetRange(range, 200);
    EXPECT_EQ(response.get_header_value("Content-Range"), "") << range;
    EXPECT_TRUE(response.body == whole) << range;
  }
}

TEST_F(RangeTest, IfRangeDecidesBetweenPartAndWhole) {
  const httplib::Response whole = Get(kFile);
  const std::string etag = whole.get_header_value("ETag");
  EXPECT_THAT(etag, MatchesRegex("\"[^\"]+\""));
  const std::string date = whole.get_header_value("Last-Modified");
  EXPECT_EQ(date, "Mon, 01 Jan 2024 09:00:00 GMT");
  EXPECT_EQ(whole.get_header_value("Accept-Ranges"), "bytes");
  GetRange("bytes=0-3", 206, etag);
  GetRange("bytes=0-3", 206, date);
  GetRange("bytes=0-3", 200, "\"other\"");
  GetRange("bytes=0-3", 200, "W/" + etag);
  GetRange("bytes=0-3", 200, "Tue, 02 Jan 2024 09:00:00 GMT");
}

TEST_F(RangeTest, EveryFileHasItsOwnEtag) {
  const std::string first = Get(kFile).get_header_value("ETag");
  EXPECT_EQ(Get(kFile).get_header_value("ETag"), first);
  EXPECT_NE(Get("/download?mid=m-1001&rtyp=z").get_header_value("ETag"), first);
  EXPECT_NE(Get("/thumbnail?mid=m-1001&rtyp=st").get_header_value("ETag"),
            Get("/thumbnail?mid=m-1001&rtyp=lt").get_header_value("ETag"));
}

TEST_F(RangeTest, PicturesAndUploadsHaveRanges) {
  EXPECT_EQ(GetRange("bytes=1-3", 206, "", "/thumbnail?mid=c-1").body, "PNG");
  const httplib::Result posted =
      client_.Post("/upload", {{"name", "Ten", "", ""},
                               {"subjectId", "m42", "", ""},
                               {"subjectClass", "entity", "", ""},
                               {"binary", "0123456789", "ten.bin", "text/plain"}});
  ASSERT_EQ(posted->status, 201);
  const char* file = "/download?mid=m-1101&rtyp=o";
  EXPECT_EQ(GetRange("bytes=3-5", 206, "", file).body, "345");
  EXPECT_EQ(GetRange("bytes=-4", 206, "", file).body, "6789");
  EXPECT_EQ(GetRange("bytes=3-5", 206, Get(file).get_header_value("ETag"), file).body, "345");
}

TEST_F(RangeTest, OtherRoutesIgnoreRanges) {
  EXPECT_EQ(GetRange("bytes=0-3", 200, "", "/user-info").get_header_value("Accept-Ranges"), "none");
  const httplib::Result head = client_.Head(kFile, {{"Range", "bytes=0-3"}});
  ASSERT_TRUE(head);
  EXPECT_EQ(head->status, 200);
  EXPECT_EQ(head->get_header_value("Content-Length"), std::to_string(Get(kFile).body.size()));
}

TEST_F(RangeTest, PartsTakeFaults) {
  EXPECT_FALSE(client_.Get(std::string(kFile) + "&fault=truncate", {{"Range", "bytes=0-99"}}));
  GetRange("bytes=0-99", 206, "", std::string(kFile) + "&fault=drip:0");
}

}  // namespace
}  // namespace stowra_emulator
