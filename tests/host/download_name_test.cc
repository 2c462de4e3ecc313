// SPDX-License-Identifier: MIT
#include "host/download_name.h"

#include <gtest/gtest.h>

#include "tests/support/text.h"

namespace stowra {
namespace {

constexpr char kUrl[] = "http://h/files/model?mid=1";

// For a header with this name.
std::string ChosenFor(const std::string& name) {
  return ChooseFileName(("attachment; filename=\"" + name + "\"").c_str(), kUrl);
}

// A header and the name that it leads to.
using Rows = std::vector<std::pair<const char*, const char*>>;

void ExpectNames(const Rows& rows) {
  for (const auto& [header, name] : rows) EXPECT_EQ(ChooseFileName(header, kUrl), name) << header;
}

TEST(DownloadNameTest, TakesModelNameFromHeader) {
  ExpectNames({
      {"attachment; filename=\"chair.qmf\"", "chair.qmf"},
      {"attachment; filename=\"chair.kmz\"; size=5", "chair.kmz"},
      {"attachment; filename=chair.qmf", "chair.qmf"},
      {"attachment; filename=chair.kmz; size=5", "chair.kmz"},
      {"attachment; filename=\"Blue chair.qmf.zip\"", "Blue chair.qmf.zip"},
      {"attachment; filename=\"a.qmf.kmz\"", "a.qmf.kmz"},
      {"attachment; filename=\"a.kmz.qmf\"", "a.kmz.qmf"},
      {"attachment; filename=\"Stühle 木.qmf\"", "Stühle 木.qmf"},
      {"attachment; filename=\"a.b.qmf", "a.b.qmf"},
      {"filename=\"chair.qmf2\"", "chair.qmf2"},
  });
}

TEST(DownloadNameTest, TakesOtherFileNameFromHeader) {
  ExpectNames({
      {"attachment; filename=\"chair.zip\"", "chair.zip"},
      {"attachment; filename=chair.zip", "chair.zip"},
      {"attachment; filename=chair.zip; size=5", "chair.zip"},
      {"attachment; filename=\"chair.QMF\"; size=5", "chair.QMF"},
      {"attachment; filename=\"Stühle; 木\"", "Stühle; 木"},
      {"attachment ;FileName = \"a b\" ; size=5", "a b"},
      {"attachment; filename=\"chair.zip", "chair.zip"},
      {"attachment; filename=\"../../etc/chair.zip\"", "chair.zip"},
      {"attachment; filename=\"C:\\models\\chair.zip\"", "chair.zip"},
      {"attachment; name=\"x; filename=y\"; filename=\"z\"", "z"},
      {"attachment; name=\"\\\"; filename=y; \"; filename=\"z\"", "z"},
      {"attachment; filename*=UTF-8''x; filename=z", "z"},
      {"attachment; filename=\"a.bin\"; filename*=UTF-8''a.qmf", "a.bin"},
      {".qmf; filename=\"a.zip\"", "a.zip"},
  });
}

TEST(DownloadNameTest, AcceptsNamesUpTo255Bytes) {
  for (const std::string end : {".qmf", ".zip"}) {
    const std::string longest = std::string(251, 'a') + end;
    EXPECT_EQ(ChosenFor(longest), longest);
    EXPECT_EQ(ChosenFor("a" + longest), "model");
    EXPECT_EQ(ChooseFileName("", "http://h/" + longest), longest);
    EXPECT_EQ(ChooseFileName("", "http://h/a" + longest), "download");
  }
  // 256 bytes, but fewer characters.
  EXPECT_EQ(ChosenFor("aa" + stowra_test::Repeated("ü", 125) + ".qmf"), "model");
}

TEST(DownloadNameTest, DropsFoldersFromHeaderName) {
  ExpectNames({
      {"filename=\"../../etc/chair.qmf\"", "chair.qmf"},
      {"filename=\"/etc/chair.qmf\"", "chair.qmf"},
      {"filename=\"C:\\models\\chair.kmz\"", "chair.kmz"},
      {"filename=\"a\\b/chair.qmf\"", "chair.qmf"},
      {"filename=\"chair.qmf/../../x\"", "x"},
      {"filename=\"x.qmf\\chair.qmf\"", "chair.qmf"},
  });
}

TEST(DownloadNameTest, DropsHiddenCharactersDotsAndBlanks) {
  ExpectNames({
      {"filename=\"a\x07.qmf\"", "a.qmf"},
      {"filename=\"a\x07\"", "a"},
      {"filename=\"a\u009B31m.qmf\"", "a31m.qmf"},
      {"filename=\"a\u2028.qmf\"", "a.qmf"},
      {"filename=\"chair\u202Efmq.exe\"", "chairfmq.exe"},
      {"filename=\"a\u200B\uFEFF.zip\"", "a.zip"},
      {"filename=\"chair.qmf. . .\"", "chair.qmf"},
      {"filename=\"chair.zip \"", "chair.zip"},
  });
}

TEST(DownloadNameTest, RefusesNamesOfDevices) {
  for (const char* name : {"CON", "con.qmf", "Nul.txt", "AUX .zip", "prn", "COM1", "lpt9.kmz",
                           "COM\u00B2.zip", "CONIN$"}) {
    EXPECT_EQ(ChosenFor(name), "model") << name;
  }
  for (const char* name : {"CONE.qmf", "COM.zip", "COM10.zip", "icon.qmf"}) {
    EXPECT_EQ(ChosenFor(name), name);
  }
}

TEST(DownloadNameTest, IgnoresHeaderWithoutSafeName) {
  EXPECT_EQ(ChooseFileName("", kUrl), "model");
  EXPECT_EQ(ChooseFileName("attachment", kUrl), "model");
  const std::vector<std::string> values = stowra_test::Split(
      R"(filename|filename=|filename=""|filename=".profile"|filename="chair/"|filename="a\"b"|)"
      R"(filename="-rf"|filename=-rf.zip|filename="-rf.qmf"|filename="a/-rf.qmf"|)"
      R"(other=chair.zip|xfilename=chair.zip|filename=".qmf"|filename="..qmf"|)"
      R"(filename="../.qmf"|filename="/.kmz"|filename=".hidden.qmf"|filename="a/.hidden.qmf"|)"
      R"(filename="chair.qmf/"|filename="chair.qmf/.."|filename="chair.qmf\."|filename="a\"b.qmf")");
  for (const std::string& value : values) {
    EXPECT_EQ(ChooseFileName(("attachment; " + value).c_str(), kUrl), "model") << value;
  }
}

TEST(DownloadNameTest, FallsBackToUrlThenToDefault) {
  const Rows rows = {
      {"http://h/a/chair.zip?x=/y#/z", "chair.zip"},
      {"https://h/chair%20a", "chair%20a"},
      {"http://h/a/b\\c", "c"},
      {"http://h/a#b?c", "a"},
      {"http://h", "download"},
      {"http://h/", "download"},
      {"http://h/a/", "download"},
      {"http://h/..", "download"},
      {"http://h/.profile", "download"},
      {"http://h/-rf", "download"},
      {"http://h/nul", "download"},
      {"http://h?/x", "download"},
      {"nonsense/name", "download"},
      {"", "download"},
  };
  for (const auto& [url, name] : rows) EXPECT_EQ(ChooseFileName("", url), name) << url;
}

}  // namespace
}  // namespace stowra
