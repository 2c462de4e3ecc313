// SPDX-License-Identifier: MIT
// Runs the content service's client against nginx.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/content/feed_text.h"
#include "tests/nginx/nginx_server.h"
#include "tests/support/certificates.h"
#include "tests/support/notification_recorder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::TransferDefaults;
using ovrant::internet::TransferError;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::StringMap;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kModels = 300;
constexpr char kEnded[] = "NginxTestEnded";

std::string ModelTitle(int index) { return "Käse-Stuhl № " + std::to_string(index) + " 🪑"; }

std::string ModelDownload(int index) {
  return "http://files.example/" + std::to_string(index) + "?rtyp=s8";
}

// A page of search results.
std::string FeedText(const std::string& title, int models) {
  std::string entries;
  for (int i = 0; i < models; ++i) {
    entries += Model()
                   .With("title", "<title>" + ModelTitle(i) + "</title>")
                   .With("group", Group(Rendition(ModelDownload(i))))
                   .text();
  }
  return Feed()
      .With("title", "<title>" + title + "</title>")
      .With("links", Link("next", "http://next.example/", "application/atom+xml"))
      .With("total", "<o:totalResults>" + std::to_string(models) + "</o:totalResults>")
      .With("entries", entries)
      .text();
}

std::string UploadConfigText(const std::string& upload_url) {
  return "<?xml version=\"1.0\"?>\n<upload><successUrl>http://pages.example/done</successUrl>"
         "<failureUrl>http://pages.example/failed</failureUrl><files><file><uploadUrl>" +
         upload_url +
         "</uploadUrl><type>model</type><zipped>true</zipped></file></files></upload>\n";
}

class NginxTest : public testing::Test {
 protected:
  NginxTest() { query_.max_qmf_version_ = 8; }

  ~NginxTest() override { InternetData::SetDefaults(TransferDefaults()); }

  // Trusts the test's authority.
  void Trust() const {
    const std::filesystem::path file = folder_.path() / "authority.pem";
    authority_.WriteTo(file);
    TransferDefaults defaults;
    defaults.ca_file = Text(file.string());
    InternetData::SetDefaults(defaults);
  }

  void ExpectModels(const std::string& title, int models) const {
    EXPECT_EQ(query_.title_.utf8(), title);
    EXPECT_EQ(query_.total_results_, models);
    EXPECT_EQ(query_.next_url_.utf8(), "http://next.example/");
    ASSERT_THAT(query_.items_, SizeIs(static_cast<std::size_t>(models)));
    int i = 0;
    for (const auto& item : query_.items_) {
      EXPECT_EQ(item->title_.utf8(), ModelTitle(i));
      EXPECT_EQ(item->download_url_.utf8(), ModelDownload(i++));
    }
  }

  ContentQuery query_;
  const TemporaryFolder folder_;
  const CertificateAuthority authority_{"Ours"};
  const Certificate certificate_ = authority_.Issue("IP:127.0.0.1");
};

TEST_F(NginxTest, ReadsPageInEveryEncoding) {
  struct Row {
    const char* path;
    std::string length;
    const char* content;
    const char* transfer;
  };
  const std::string feed = FeedText("chairs", kModels);
  for (const auto& [path, length, content, transfer] :
       {Row{"/plain/feed", std::to_string(feed.size()), "-", "-"},
        Row{"/gzip/feed", "-", "gzip", "chunked"}, Row{"/chunked/feed", "-", "-", "chunked"}}) {
    SCOPED_TRACE(path);
    NginxServer server;
    server.AddFile("feed", feed);
    EXPECT_TRUE(query_.QueryFeed(Text(server.Url(path))));
    ExpectModels("chairs", kModels);
    const std::vector<LoggedRequest> log = server.Stop();
    ASSERT_THAT(log, SizeIs(1));
    EXPECT_EQ(log[0].content_length, length);
    EXPECT_EQ(log[0].content_encoding, content);
    EXPECT_EQ(log[0].transfer_encoding, transfer);
  }
}

TEST_F(NginxTest, ReusesOneConnectionForAllPages) {
  Trust();
  const std::vector<std::string> paths = {"/plain/a", "/gzip/b", "/chunked/a", "/moved/b",
                                          "/gzip/a"};
  for (const Certificate* certificate : {static_cast<const Certificate*>(nullptr), &certificate_}) {
    NginxServer server(certificate);
    server.AddFile("a", FeedText("chairs", 3));
    server.AddFile("b", FeedText("tables", kModels));
    for (const std::string& path : paths) {
      SCOPED_TRACE(server.Url(path));
      EXPECT_TRUE(query_.QueryFeed(Text(server.Url(path))));
      path.back() == 'a' ? ExpectModels("chairs", 3) : ExpectModels("tables", kModels);
    }
    const std::vector<LoggedRequest> log = server.Stop();
    ASSERT_THAT(log, SizeIs(paths.size() + 1));
    EXPECT_EQ(log[4].path, "/plain/b");  // redirected from the one before
    for (std::size_t i = 0; i < log.size(); ++i) {
      EXPECT_EQ(log[i].connection, log[0].connection);
      EXPECT_EQ(log[i].connection_requests, static_cast<int>(i + 1));
    }
  }
}

// On a shared connection, one transfer's progress would hide another one's inactivity.
TEST_F(NginxTest, GivesEachHttp2TransferItsOwnConnection) {
  Trust();
  NginxServer server(&certificate_);
  constexpr std::size_t kSize = 600'000;  // several seconds long
  server.AddFile("page", std::string(kSize, 'x'));
  InternetData plain(Text(server.Url("/plain/page")));
  InternetData first(Text(server.Url("/slow/page")));
  InternetData second(Text(server.Url("/slow/page")));
  NotificationRecorder recorder({kEnded});
  InternetDataDelegate delegate(nullptr, 1, kEnded, 2, kEnded);
  // Leaves one connection in the pool that both could share.
  ASSERT_TRUE(plain.DownloadWithDelegate(&delegate, nullptr));
  ASSERT_TRUE(recorder.WaitFor(1));
  ASSERT_TRUE(first.DownloadWithDelegate(&delegate, nullptr));
  ASSERT_TRUE(second.DownloadWithDelegate(&delegate, nullptr));
  ASSERT_TRUE(recorder.WaitFor(3));
  EXPECT_EQ(first.received_data_length(), kSize);
  EXPECT_EQ(second.received_data_length(), kSize);
  const std::vector<LoggedRequest> log = server.Stop();
  ASSERT_THAT(log, SizeIs(3));
  EXPECT_NE(log[1].connection, log[2].connection);
  for (const LoggedRequest& request : log) EXPECT_EQ(request.protocol, "HTTP/2.0");
}

TEST_F(NginxTest, RefusesTestAuthorityUnlessItIsSet) {
  NginxServer server(&certificate_);
  server.AddFile("feed", FeedText("chairs", 3));
  query_.title_ = "before";
  EXPECT_FALSE(query_.QueryFeed(Text(server.Url("/plain/feed"))));
  EXPECT_EQ(InternetData::LastError(), TransferError::kTls);
  EXPECT_EQ(query_.title_.utf8(), "before");
  EXPECT_THAT(server.Stop(), IsEmpty());
}

// Builds a body as a host does, posts it and returns the status.
int Upload(const UploadFile& file, const std::string& data, std::string& body) {
  namespace multipartupload = ovrant::stowraapiclient::multipartupload;
  const std::string boundary = multipartupload::GetBoundaryString();
  std::stringstream out;
  multipartupload::SetupPayload("m42", &file, reinterpret_cast<const unsigned char*>(data.data()),
                                static_cast<unsigned long>(data.size()), boundary, &out);
  body = out.str();
  InternetData transport{file.upload_url_};
  transport.set_send_data(reinterpret_cast<const unsigned char*>(body.data()),
                          static_cast<unsigned long>(body.size()));
  StringMap headers =
      multipartupload::CreateHeaderDictionary(boundary, static_cast<unsigned long>(body.size()));
  int status = 0;
  EXPECT_TRUE(transport.SendAndRead(file.upload_url_, nullptr, nullptr, &status, &headers, false,
                                    false, true, "", "", nullptr));
  return status;
}

TEST_F(NginxTest, UploadsToConfiguredUrl) {
  NginxServer server;
  server.AddFile("config", UploadConfigText(server.Url("/upload?name=Chair")));
  UploadConfig config;
  config.Init(Text(server.Url("/gzip/config")));
  ASSERT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.success_url_.utf8(), "http://pages.example/done");
  ASSERT_THAT(config.files_, SizeIs(1));
  EXPECT_TRUE(config.files_[0].zipped_);

  std::string body;
  EXPECT_EQ(Upload(config.files_[0], std::string(20'000'000, 'x'), body), 200);
  const std::vector<LoggedRequest> log = server.Stop();
  ASSERT_THAT(log, SizeIs(2));
  EXPECT_EQ(log[1].method, "POST");
  const std::vector<std::string> uploads = server.Uploads();
  ASSERT_THAT(uploads, SizeIs(1));
  EXPECT_TRUE(uploads[0] == body) << uploads[0].size() << " bytes of " << body.size();
}

TEST_F(NginxTest, ReportsStatus413ForTooLargeUpload) {
  NginxServer server;
  UploadFile file;
  file.upload_url_ = Text(server.Url("/upload/small"));
  std::string body;
  EXPECT_EQ(Upload(file, std::string(20'000'000, 'x'), body), 413);
}

}  // namespace
}  // namespace stowra_test
