// SPDX-License-Identifier: MIT
// UploadConfig on the substitute platform: what it asks of reader and transport, and in what order.

#include <climits>
#include <tuple>

#include "tests/content/fields.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using stowra_test::Fields;

XmlElement Upload(const std::vector<XmlElement>& files) {
  return Parent("upload", {Parent("files", files), Leaf("failureUrl", "http://failure/"),
                           Leaf("successUrl", "http://success/")});
}

XmlElement File() {
  return Parent("file",
                {Leaf("name", "n"), Leaf("height", "2"), Leaf("width", "1"), Leaf("format", "f"),
                 Leaf("zipped", "TRUE"), Leaf("type", "t"), Leaf("uploadUrl", "http://u/")});
}

class UploadConfigTest : public ContentTest {
 protected:
  UploadConfigTest() { config.Init("http://a/"); }

  bool Parse(const XmlElement& document) {
    ScriptDocument(document);
    Bytes bytes("<x/>");
    return config.ParseResponse(bytes.data(), bytes.size());
  }

  bool Query(const XmlElement& document) {
    ScriptTransfer(Reply(200, "body"));
    ScriptDocument(document);
    return config.SynchronousQuery();
  }

  void ExpectEmpty() { EXPECT_EQ(Fields(config), std::make_tuple("http://a/", "", "", 0U)); }

  UploadConfig config;
};

TEST_F(UploadConfigTest, WalksADocumentInItsOwnOrderWhateverIsMissing) {
  const std::string urls = "+upload | .successUrl | .failureUrl | ";
  const std::string end = " | -upload";
  const std::string file = ".uploadUrl | .type | .zipped | .format | #width | #height | .name | ";
  const std::string no_file =
      "!.uploadUrl | !.type | !.zipped | !.format | !#width | !#height | !.name | ";
  const std::tuple<XmlElement, bool, std::string> documents[] = {
      {Upload({File(), File()}), true,
       urls + "+files | +file | " + file + ">file | " + file + "!>file | -file | -files" + end},
      {Upload({}), true, urls + "+files | !+file | -files" + end},
      {Parent("upload", {Leaf("successUrl", "s"), Leaf("failureUrl", "f")}), false,
       urls + "!+files" + end},
      {Parent("upload", {Parent("files", {Parent("file", {}), Parent("file", {})})}), false,
       "+upload | !.successUrl | !.failureUrl | +files | +file | " + no_file + ">file | " +
           no_file + "!>file | -file | -files" + end},
      {Parent("download", {Upload({File()})}), false, "!+upload"}};
  for (const auto& [document, parses, walk] : documents) {
    EXPECT_EQ(Parse(document), parses) << walk;
    EXPECT_EQ(TakeText(), "Get_IXMLInput 4 bytes: <x/> | " + walk + " | reader deleted");
  }
}

// A reader's length is an int; what does not fit one is not cut off.
TEST_F(UploadConfigTest, LengthIsPassedWhereItFits) {
  const unsigned long longest = INT_MAX;
  Bytes bytes("<x/>");
  ScriptUnreadableDocument();
  EXPECT_FALSE(config.ParseResponse(bytes.data(), longest));
  EXPECT_EQ(TakeText(), "Get_IXMLInput 2147483647 bytes: ");
  EXPECT_FALSE(config.ParseResponse(bytes.data(), longest + 1));
  EXPECT_FALSE(config.ParseResponse(bytes.data(), (longest + 1) * 2 + bytes.size()));
  EXPECT_EQ(TakeText(), "");
}

TEST_F(UploadConfigTest, WhatLeaveElementGivesIsNotLookedAt) {
  SetLeaveResult(false);
  EXPECT_TRUE(Parse(Upload({File()})));
}

TEST_F(UploadConfigTest, DownloadsThenParsesWhileTheTransportExists) {
  EXPECT_TRUE(Query(Upload({})));
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | http://a/: Download | Get_IXMLInput 4 bytes: body | +upload "
            "| .successUrl | .failureUrl | +files | !+file | -files | -upload | reader deleted | "
            "http://a/: deleted");
}

TEST_F(UploadConfigTest, AnyStatusOfAResponseIsParsed) {
  for (const int status :
       {-200, 0, 100, 199, 200, 201, 203, 204, 300, 302, 400, 403, 404, 500, 503}) {
    config.Clear();
    ScriptTransfer(Reply(status, "body"));
    ScriptDocument(Upload({File()}));
    EXPECT_TRUE(config.SynchronousQuery()) << status;
    EXPECT_EQ(config.files_.size(), 1U) << status;
  }
}

TEST_F(UploadConfigTest, AFailedDownloadClearsWhateverItsStatus) {
  for (const int status : {0, 200, 404}) {
    ASSERT_TRUE(Parse(Upload({File()})));
    TakeEffects();
    ScriptTransfer({false, status, "body", {}});
    EXPECT_FALSE(config.SynchronousQuery());
    EXPECT_EQ(TakeText(), "http://a/: constructed | http://a/: Download | http://a/: deleted");
    ExpectEmpty();
  }
}

TEST_F(UploadConfigTest, ABadDocumentClearsAndTheTransportIsDeleted) {
  EXPECT_FALSE(Query(Upload({File(), Parent("file", {Leaf("uploadUrl", "u")})})));
  EXPECT_EQ(TakeEffects().back(), "http://a/: deleted");
  ExpectEmpty();

  ScriptTransfer(Reply(200, "no"));
  ScriptUnreadableDocument();
  EXPECT_FALSE(config.SynchronousQuery());
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | http://a/: Download | Get_IXMLInput 2 bytes: no | "
            "http://a/: deleted");
}

TEST_F(UploadConfigTest, AnEmptyUrlIsDownloaded) {
  config.Init("");
  ScriptTransfer(NoReply());
  EXPECT_FALSE(config.SynchronousQuery());
  EXPECT_EQ(TakeText(), ": constructed | : Download | : deleted");
}

// Whatever runs out of memory, reader and transport are gone.
TEST_F(UploadConfigTest, RunningOutOfMemoryIsAFailure) {
  for (const char* const operation :
       {"+upload", ".failureUrl", "+file", "#width", "!>file", "-upload"}) {
    SetFailingOperation(operation);
    EXPECT_FALSE(Parse(Upload({File()}))) << operation;
    SetFailingOperation(operation);
    EXPECT_FALSE(Query(Upload({File()}))) << operation;
    EXPECT_EQ(CountReaders(), 0) << operation;
    EXPECT_EQ(CountTransports(), 0) << operation;
    ExpectEmpty();
  }
}

}  // namespace
}  // namespace stowra_substitute
