// UploadConfig on the substitute platform: what it asks of reader and transport, and in what order.

#include <climits>
#include <new>
#include <string>

#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::UploadConfig;
using testing::ElementsAre;
using testing::IsEmpty;

// The reading of a file without anything in it.
constexpr char kEmptyFile[] = R"(GetElementText uploadUrl: none
GetElementText type: none
GetElementText zipped: none
GetElementText format: none
GetElementInt width: none
GetElementInt height: none
GetElementText name: none
)";

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

  void ExpectEmpty() {
    EXPECT_EQ(config.url_, "http://a/");
    EXPECT_EQ(config.success_url_, "");
    EXPECT_EQ(config.failure_url_, "");
    EXPECT_TRUE(config.files_.empty());
  }

  UploadConfig config;
};

TEST_F(UploadConfigTest, WalksACompleteDocumentInItsOwnOrder) {
  EXPECT_TRUE(Parse(Upload({File(), File()})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 4 bytes: <x/>
FindElement upload
GetElementText successUrl
GetElementText failureUrl
FindElement files
FindElement file
GetElementText uploadUrl
GetElementText type
GetElementText zipped
GetElementText format
GetElementInt width
GetElementInt height
GetElementText name
NextElement file
GetElementText uploadUrl
GetElementText type
GetElementText zipped
GetElementText format
GetElementInt width
GetElementInt height
GetElementText name
NextElement file: none
LeaveElement file
LeaveElement files
LeaveElement upload
reader deleted
)");
  ASSERT_EQ(config.files_.size(), 2U);
  EXPECT_TRUE(config.files_[1].zipped_);
  EXPECT_EQ(config.files_[1].width_, 1);
  EXPECT_EQ(config.files_[1].height_, 2);
}

TEST_F(UploadConfigTest, ReadsEveryFileWhateverIsMissing) {
  EXPECT_FALSE(
      Parse(Parent("upload", {Parent("files", {Parent("file", {}), Parent("file", {})})})));
  EXPECT_EQ(TakeLines(), std::string(R"(
Get_IXMLInput 4 bytes: <x/>
FindElement upload
GetElementText successUrl: none
GetElementText failureUrl: none
FindElement files
FindElement file
)") + kEmptyFile + "NextElement file\n" +
                             kEmptyFile + R"(NextElement file: none
LeaveElement file
LeaveElement files
LeaveElement upload
reader deleted
)");
  EXPECT_EQ(config.files_.size(), 2U);
}

TEST_F(UploadConfigTest, FailureUrlIsReadThoughSuccessUrlIsMissing) {
  EXPECT_FALSE(Parse(Parent("upload", {Leaf("failureUrl", "f"), Parent("files", {})})));
  EXPECT_EQ(config.failure_url_, "f");
  EXPECT_FALSE(Parse(Parent("upload", {Leaf("successUrl", "s"), Parent("files", {})})));
  EXPECT_EQ(config.success_url_, "s");
}

TEST_F(UploadConfigTest, AnEmptyListIsLeft) {
  EXPECT_TRUE(Parse(Upload({})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 4 bytes: <x/>
FindElement upload
GetElementText successUrl
GetElementText failureUrl
FindElement files
FindElement file: none
LeaveElement files
LeaveElement upload
reader deleted
)");
}

TEST_F(UploadConfigTest, AMissingListIsNotLeft) {
  EXPECT_FALSE(Parse(Parent("upload", {Leaf("successUrl", "s"), Leaf("failureUrl", "f")})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 4 bytes: <x/>
FindElement upload
GetElementText successUrl
GetElementText failureUrl
FindElement files: none
LeaveElement upload
reader deleted
)");
}

TEST_F(UploadConfigTest, ARootOfAnotherNameIsReleasedAtOnce) {
  EXPECT_FALSE(Parse(Parent("download", {Upload({File()})})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 4 bytes: <x/>
FindElement upload: none
reader deleted
)");
}

TEST_F(UploadConfigTest, ADocumentThatDoesNotOpenIsNotRead) {
  ScriptUnreadableDocument();
  EXPECT_FALSE(config.ParseResponse(nullptr, 0));
  EXPECT_THAT(TakeEffects(), ElementsAre("Get_IXMLInput 0 bytes: "));
}

// A reader's length is an int; what does not fit one is not cut off.
TEST_F(UploadConfigTest, LengthIsPassedWhereItFits) {
  const unsigned long longest = INT_MAX;
  Bytes bytes("<x/>");
  ScriptUnreadableDocument();
  EXPECT_FALSE(config.ParseResponse(bytes.data(), longest));
  EXPECT_THAT(TakeEffects(), ElementsAre("Get_IXMLInput 2147483647 bytes: "));
  EXPECT_FALSE(config.ParseResponse(bytes.data(), longest + 1));
  EXPECT_FALSE(config.ParseResponse(bytes.data(), (longest + 1) * 2 + bytes.size()));
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

TEST_F(UploadConfigTest, WhatLeaveElementGivesIsNotLookedAt) {
  SetLeaveResult(false);
  EXPECT_TRUE(Parse(Upload({File()})));
}

TEST_F(UploadConfigTest, DownloadsThenParsesWhileTheTransportExists) {
  EXPECT_TRUE(Query(Upload({})));
  EXPECT_EQ(TakeLines(), R"(
http://a/: constructed
http://a/: Download
Get_IXMLInput 4 bytes: body
FindElement upload
GetElementText successUrl
GetElementText failureUrl
FindElement files
FindElement file: none
LeaveElement files
LeaveElement upload
reader deleted
http://a/: deleted
)");
}

TEST_F(UploadConfigTest, AnyStatusOfAResponseIsParsed) {
  for (const int status : {-200, 0, 100, 199, 200, 201, 204, 302, 404, 500}) {
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
    EXPECT_THAT(TakeEffects(),
                ElementsAre("http://a/: constructed", "http://a/: Download", "http://a/: deleted"));
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
  EXPECT_THAT(TakeEffects(), ElementsAre("http://a/: constructed", "http://a/: Download",
                                         "Get_IXMLInput 2 bytes: no", "http://a/: deleted"));
}

TEST_F(UploadConfigTest, AnEmptyUrlIsDownloaded) {
  config.Init("");
  ScriptTransfer(NoReply());
  EXPECT_FALSE(config.SynchronousQuery());
  EXPECT_THAT(TakeEffects(), ElementsAre(": constructed", ": Download", ": deleted"));
}

TEST_F(UploadConfigTest, InitAndClearDoNothingElse) {
  ASSERT_TRUE(Parse(Upload({File()})));
  TakeEffects();
  config.Clear();
  ExpectEmpty();
  config.Init("http://b/");
  EXPECT_EQ(config.url_, "http://b/");
  EXPECT_THAT(TakeEffects(), IsEmpty());
}

// Whatever runs out of memory, reader and transport are gone.
TEST_F(UploadConfigTest, RunningOutOfMemoryIsAFailure) {
  for (const char* const operation :
       {"FindElement upload", "GetElementText failureUrl", "FindElement file",
        "GetElementInt width", "NextElement file: none", "LeaveElement upload"}) {
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
