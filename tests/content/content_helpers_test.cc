// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "tests/content/feed_text.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::GetFilenameFromContentDisposition;
using ovrant::stowraapiclient::GetStowraIdFromUrl;

std::string IdOf(const std::string& url) { return GetStowraIdFromUrl(Text(url)).utf8(); }

std::string NameIn(const std::string& header) {
  return GetFilenameFromContentDisposition(Text(header)).utf8();
}

TEST(StowraIdTest, StandsBetweenTheMarkAndTheNextAmpersandOrTheEnd) {
  const std::pair<const char*, const char*> urls[] = {
      {"http://a/get?mid=abc123&rtyp=x", "abc123"},
      {"http://a/get?mid=abc123", "abc123"},
      {"http://a/get?x&y&mid=abc123&z", "abc123"},
      {"http://a/get?xmid=5", "5"},
      {"http://a/mid=5/x?y&z", "5/x?y"},
      {"mid=", ""},
      {"mid=&x=1", ""},
      {"?mid=1&mid=2", "1"},
      {"?mid=1#2", "1#2"},
      {"?mid=mid=1", "mid=1"},
      {"?mid=%31+2", "%31+2"},
      {"&&&mid=1", "1"},
      {"\xC3\xA9\xF0\x9F\xAA\x91?mid=\xC3\xA9\xF0\x9F\xAA\x91&x", "\xC3\xA9\xF0\x9F\xAA\x91"}};
  for (const auto& [url, id] : urls) EXPECT_EQ(IdOf(url), id) << url;
}

TEST(StowraIdTest, IsEmptyWithoutTheMark) {
  for (const char* const url : {"", "http://a/", "?MID=1", "?mid", "?mi=d=1", "mid 1", "id=1"}) {
    EXPECT_EQ(IdOf(url), "") << url;
  }
}

TEST(DispositionNameTest, StandsBetweenTheMarkAndTheExtension) {
  const std::pair<const char*, const char*> headers[] = {
      {"attachment; filename=\"chair.qmf\"", "chair"},
      {"attachment; filename=chair.qmf", "chair"},
      {"attachment; filename=\"chair.kmz\"", "chair"},
      {"attachment; filename=chair.kmz", "chair"},
      {"attachment; filename=\"a.qmf.kmz\"", "a"},
      {"attachment; filename=\"a.kmz.qmf\"", "a.kmz"},
      {"attachment; filename=\"a.qmf.qmf\"", "a"},
      {"attachment; filename=\"a.qmfx\"", "a"},
      {"filename=\"x/../chair.v2.qmf\"; x", "x/../chair.v2"},
      {"filename=\".qmf\"", ""},
      {"filename=.qmf", ""},
      {"filename=a; filename=\"b.qmf\"", "b"},
      {"filename=a; filename=b.qmf", "a; filename=b"},
      {"filename=\"a; filename=\"b.qmf", "a; filename=\"b"},
      {"filename=\"a\"; x=b.qmf", "a\"; x=b"},
      {"filename= \"a.qmf\"", " \"a"},
      {"xfilename=a.kmz", "a"},
      {"filename*=UTF-8''x; filename=\"\xE6\xA4\x85.qmf\"", "\xE6\xA4\x85"}};
  for (const auto& [header, name] : headers) EXPECT_EQ(NameIn(header), name) << header;
}

TEST(DispositionNameTest, IsEmptyWithoutMarkOrExtension) {
  for (const char* const header :
       {"", "attachment", "attachment.qmf", "filename=\"chair.zip\"", "filename=", "filename=\"",
        "filename=\"chair\"", "FILENAME=\"chair.qmf\"", "filename=\"chair.QMF\"",
        "filename=\"chair.KMZ\"", "filename =\"chair.qmf\"", "filename*=UTF-8''chair.qmf",
        "filename=\"chair qmf\""}) {
    EXPECT_EQ(NameIn(header), "") << header;
  }
}

TEST(DispositionNameTest, IsEmptyWhenTheExtensionStandsFirst) {
  for (const char* const header :
       {"x=a.qmf; filename=\"chair.qmf\"", "x=a.qmf; filename=\"chair.kmz\"",
        "x=a.kmz; filename=chair", ".qmf filename=chair.kmz",
        ".qmffilename=", "filename.qmf=\"; filename=\"x"}) {
    EXPECT_EQ(NameIn(header), "") << header;
  }
  // A ".qmf" anywhere wins over the first ".kmz".
  EXPECT_EQ(NameIn("x=a.kmz; filename=\"chair.qmf\""), "chair");
}

// The same rule, written over bytes.
std::string NameAgain(const std::string& header) {
  const auto split = [](const std::string& text, const std::string& mark, std::string& before,
                        std::string& after) {
    const auto at = std::search(text.begin(), text.end(), mark.begin(), mark.end());
    if (at == text.end()) return false;
    before.assign(text.begin(), at);
    after.assign(at + static_cast<std::ptrdiff_t>(mark.size()), text.end());
    return true;
  };
  std::string before;
  std::string name;
  if (!split(header, "filename=\"", before, name) && !split(header, "filename=", before, name)) {
    return "";
  }
  std::string up_to_extension;
  std::string rest;
  if (!split(header, ".qmf", up_to_extension, rest) &&
      !split(header, ".kmz", up_to_extension, rest)) {
    return "";
  }
  const std::size_t skipped = header.size() - name.size();
  return up_to_extension.size() < skipped ? "" : up_to_extension.substr(skipped);
}

std::string WithExtension(std::string header, const std::string& extension) {
  for (const char* const other : {".pdf", ".html", ".txt", ".jpg", ".exe", ".zip"}) {
    for (std::string::size_type at; (at = header.find(other)) != std::string::npos;) {
      header.replace(at, std::string(other).size(), extension);
    }
  }
  return header;
}

TEST(DispositionNameCorpusTest, EveryHeaderIsAnsweredByTheRule) {
  SKIP_WITHOUT_CORPUS(folder, "content-disposition");
  const auto headers = nlohmann::json::parse(ReadFile(folder / "headers.json"));
  ASSERT_EQ(headers.size(), 122U);
  int named = 0;
  for (const auto& entry : headers) {
    const auto header = entry.get<std::string>();
    for (const std::string& text :
         {header, WithExtension(header, ".qmf"), WithExtension(header, ".kmz"), header + ".qmf",
          header + ".kmz", ".qmf" + header, ".kmz" + header + ".qmf",
          WithExtension(header, ".kmz") + ".qmf"}) {
      const std::string expected = NameAgain(text);
      EXPECT_EQ(NameIn(text), expected) << text;
      if (!expected.empty()) ++named;
    }
  }
  EXPECT_GT(named, 100);
}

}  // namespace
}  // namespace stowra_test
