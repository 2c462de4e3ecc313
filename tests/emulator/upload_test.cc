// SPDX-License-Identifier: MIT

#include <algorithm>
#include <nlohmann/json.hpp>

#include "emulator/database.h"
#include "emulator/random_stream.h"
#include "tests/emulator/http_client.h"
#include "tests/support/temporary_folder.h"

namespace stowra_emulator {
namespace {

using httplib::MultipartFormDataItems;
using nlohmann::json;

std::string RandomBytes(std::size_t size) {
  RandomStream random("upload");
  std::string bytes;
  bytes.reserve(size);
  while (bytes.size() < size) bytes += static_cast<char>(random.Next() >> 56);
  return bytes;
}

MultipartFormDataItems Without(MultipartFormDataItems form, const std::string& part) {
  const auto is_part = [&part](const auto& item) { return item.name == part; };
  form.erase(std::find_if(form.begin(), form.end(), is_part));
  return form;
}

MultipartFormDataItems With(MultipartFormDataItems form, const std::string& part,
                            const std::string& value) {
  form.push_back({part, value, "", ""});
  return form;
}

class UploadTest : public ClientTest {
 protected:
  httplib::Response PostForm(const MultipartFormDataItems& form, int status) {
    httplib::Response response = ResponseOf(client_.Post("/upload?name=ignored", form), status);
    EXPECT_EQ(response.get_header_value("Content-Type"), "application/json");
    return response;
  }

  // The answer to a successful upload.
  json Upload(const MultipartFormDataItems& form) { return json::parse(PostForm(form, 201).body); }

  std::string ErrorOf(const MultipartFormDataItems& form) {
    return json::parse(PostForm(form, 400).body).value("error", "");
  }

  RawResponse DownloadOf(const json& answer) {
    return Get(answer.at("download_url").get<std::string>());
  }
};

TEST_F(UploadTest, FindsAndDownloadsTheUploadedModel) {
  const std::string bytes = RandomBytes(100000);
  const httplib::Response response = PostForm(FormOf("Gläserner Pavillon", bytes), 201);
  const json answer = json::parse(response.body);
  EXPECT_EQ(answer.at("mid"), "m-1101");
  EXPECT_EQ(answer.at("url"), emulator_.url() + "/model?mid=m-1101");
  EXPECT_EQ(response.get_header_value("Location"), answer.at("url"));

  const XmlElement feed = GetFeed("/search?q=pavillon%20filetype:qmf");
  ASSERT_THAT(Titles(feed), ElementsAre("Gläserner Pavillon"));
  const XmlElement& entry = *Entries(feed)[0];
  EXPECT_EQ(entry.Link("alternate"), answer.at("url"));
  EXPECT_EQ(entry.Child(Atom("author")).Child(Atom("name")).text, "Zoë Ångström");
  ASSERT_EQ(Contents(entry).size(), 1u);
  EXPECT_EQ(Contents(entry)[0]->Attribute("type"), kQmf);
  EXPECT_EQ(Contents(entry)[0]->Attribute("url"), answer.at("download_url"));

  const RawResponse file = DownloadOf(answer);
  EXPECT_TRUE(file.body == bytes);
  EXPECT_EQ(file.Header("Content-Type"), kQmf);
  EXPECT_EQ(file.Header("Content-Disposition"), "attachment; filename=\"Gläserner Pavillon.qmf\"");
  GetPage(answer.at("url").get<std::string>());
  Get("/thumbnail?mid=m-1101");
}

TEST_F(UploadTest, ReturnsZippedFileUnchanged) {
  const std::string bytes = RandomBytes(5000);
  const json answer = Upload(With(FormOf("Packed", bytes), "isZipped", "true"));
  const RawResponse file = DownloadOf(answer);
  EXPECT_TRUE(file.body == bytes);
  EXPECT_EQ(file.Header("Content-Disposition"), "attachment; filename=\"Packed.qmf.zip\"");
  EXPECT_THAT(TitlesFor("packed"), ElementsAre("Packed"));
  const json zip = Upload(With(FormOf("Packed", bytes, "application/zip"), "isZipped", "true"));
  EXPECT_EQ(DownloadOf(zip).Header("Content-Disposition"), "attachment; filename=\"Packed.zip\"");
}

TEST_F(UploadTest, ReturnsLargeFileUnchanged) {
  const std::string bytes = RandomBytes(40 << 20);
  client_.set_read_timeout(120);
  EXPECT_TRUE(DownloadOf(Upload(FormOf("Large", bytes))).body == bytes);
}

TEST_F(UploadTest, ReturnsAnyBytesUnchanged) {
  const std::vector<std::string> files = {"",       std::string(1, '\0'), "\r\n",
                                          "\r\n--", "--\r\n\r\n",         std::string(70000, '-')};
  for (const std::string& bytes : files) {
    EXPECT_EQ(DownloadOf(Upload(FormOf("Bytes", bytes))).body, bytes);
  }
}

TEST_F(UploadTest, TypeDecidesTheRendition) {
  for (const auto& [type, rtyp, served] :
       {std::tuple(kQmf, "s", kQmf),
        {"application/vnd.pellamy.kmz", "k2", "application/vnd.pellamy.kmz"},
        {"application/zip", "z", "application/zip"},
        {"application%2Fzip", "z", "application/zip"},
        {"model/other", "o", "model/other"},
        {"", "o", "application/octet-stream"}}) {
    const std::string url = Upload(FormOf("Typed", "x", type)).at("download_url");
    EXPECT_THAT(url, testing::EndsWith(std::string("&rtyp=") + rtyp)) << type;
    EXPECT_EQ(Get(url).Header("Content-Type"), served) << type;
  }
}

TEST_F(UploadTest, DecodesEscapesFromTheAddress) {
  Upload(FormOf("Zo%C3%ABs%20Hocker%2", "x"));
  EXPECT_THAT(TitlesFor("hocker"), ElementsAre("Zoës Hocker%2"));
}

TEST_F(UploadTest, AcceptsAnyTitle) {
  const std::string title = "\"Quoted\" <b>&amp;</b>/..\\ \xF0\x9F\x8C\xB5 кактус";
  const json answer = Upload(FormOf(title, "x"));
  EXPECT_THAT(TitlesFor("%F0%9F%8C%B5"), ElementsAre(title));
  EXPECT_EQ(DownloadOf(answer).Header("Content-Disposition"),
            "attachment; filename=\"Quoted <b>&amp;<b>.. 🌵 кактус.qmf\"");
  Upload(FormOf("Line%0D%0AX-Injected:%20yes%00 end", "x"));
  EXPECT_THAT(TitlesFor("injected"), ElementsAre("Line\r\nX-Injected: yes end"));
}

TEST_F(UploadTest, TakesTitleFromFileNameIfNameIsEmpty) {
  MultipartFormDataItems form = FormOf("", "x");
  form.back().filename = "C:\\models\\Alter Schrank.v2.qmf";
  Upload(form);
  EXPECT_THAT(TitlesFor("schrank"), ElementsAre("Alter Schrank"));
}

TEST_F(UploadTest, RefusesMissingRepeatedAndBadParts) {
  for (const char* part : {"name", "subjectId", "subjectClass", "binary"}) {
    EXPECT_EQ(ErrorOf(Without(FormOf("Chair", "x"), part)),
              "the part '" + std::string(part) + "' is missing");
    EXPECT_EQ(ErrorOf(With(FormOf("Chair", "x"), part, "again")),
              "the part '" + std::string(part) + "' comes twice");
  }
  MultipartFormDataItems nameless = FormOf("Chair", "x");
  nameless.back().filename = "";
  EXPECT_THAT(ErrorOf(nameless), HasSubstr("no filename"));
  EXPECT_THAT(ErrorOf(With(FormOf("Chair", "x"), "isZipped", "yes")), HasSubstr("'isZipped'"));
  EXPECT_THAT(ErrorOf(FormOf("Chair", "x", "text/plain%0D%0AX-Injected: yes")),
              HasSubstr("content type"));
  EXPECT_EQ(Total(GetFeed("/search")), 106) << "nothing was added";
}

TEST_F(UploadTest, RefusesBodyThatIsNoForm) {
  const std::vector<std::pair<std::string, std::string>> bodies = {
      {"", "application/json"},
      {"{}", "application/json"},
      {"name=Chair&binary=x", "application/x-www-form-urlencoded"},
      {"--b\r\n", "multipart/mixed; boundary=b"},
      {"no form", "multipart/form-data; boundary=b"},
      {"--b\r\nContent-Disposition: form-data; name=\"name\"\r\n\r\nChair",
       "multipart/form-data; boundary=b"},
      {"--b--\r\n", "multipart/form-data"}};
  for (const auto& [body, type] : bodies) {
    SCOPED_TRACE(type + '\n' + body);
    const httplib::Response response = ResponseOf(client_.Post("/upload", body, type), 400);
    EXPECT_TRUE(json::parse(response.body).contains("error"));
  }
}

TEST_F(UploadTest, ReadsFormAsClientsWriteIt) {
  const std::string bytes("\0\x01\r\n--BrevixClient", 18);
  const std::string boundary = "BrevixClient0385119264730052";
  const std::string line = "--" + boundary + "\r\nContent-Disposition: form-data; name=";
  const std::string body =
      line + "\"name\"\r\n\r\nHigh%20Stool\r\n" + line + "\"subjectId\"\r\n\r\n\r\n" + line +
      "\"subjectClass\"\r\n\r\nentity\r\n" + line + "\"binary\"; filename=\"木の椅子.qmf\"\r\n" +
      "Content-Type: application/vnd.brevix.qmf\r\n\r\n" + bytes + "\r\n" + line +
      "\"task\"\r\n\r\ncreate\r\n" + line + "\"priority\"\r\n\r\n1\r\n" + "--" + boundary +
      "--\r\n";
  const httplib::Response response =
      ResponseOf(client_.Post("/upload", body, "multipart/form-data; boundary=" + boundary), 201);
  EXPECT_EQ(DownloadOf(json::parse(response.body)).body, bytes);
  const XmlElement feed = GetFeed("/search?q=stool");
  ASSERT_THAT(Titles(feed), ElementsAre("High Stool"));
  EXPECT_EQ(Entries(feed)[0]->Child(Atom("summary")).text, "Uploaded as 木の椅子.qmf.");
}

TEST_F(UploadTest, ResultPagesSayWhatHappened) {
  Upload(FormOf("New <Chair>", "x"));
  const XmlElement succeeded = GetPage("/upload-succeeded?mid=m-1101");
  const XmlElement& link = succeeded.Child("body").Child("main").Descendant("a");
  EXPECT_EQ(link.text, "New <Chair>");
  GetPage(link.Attribute("href"));
  GetPage("/upload-succeeded");
  GetError("/upload-succeeded?mid=m-9999", 404);
  EXPECT_THAT(Get("/upload-failed?reason=no+%3Croom%3E").body, HasSubstr("no &lt;room&gt;"));
  GetPage("/upload-failed");
}

TEST(UploadDatabaseTest, KeepsEveryPart) {
  const stowra_test::TemporaryFolder folder;
  EmulatorOptions options;
  options.database_file = (folder.path() / "services.db").string();
  {
    const Emulator emulator(options);
    MultipartFormDataItems form = With(FormOf("Kept", std::string("a\0b", 3)), "task", "up%20date");
    form = With(With(form, "priority", "9"), "isZipped", "true");
    ResponseOf(PatientClient(emulator.url()).Post("/upload", form), 201);
  }
  {
    Database database(options.database_file);
    Statement row = database.Prepare(
        "SELECT mid, subject_id, subject_class, file_name, content_type, task, priority, "
        "is_zipped, size FROM uploads");
    ASSERT_TRUE(row.Step());
    std::vector<std::string> texts;
    for (int column = 0; column < 8; ++column) texts.push_back(row.Text(column));
    EXPECT_THAT(texts,
                ElementsAre("m-1101", "m42", "entity", "chair.qmf", kQmf, "up date", "9", "1"));
    EXPECT_EQ(row.Int64(8), 3);
    EXPECT_FALSE(row.Step());
  }
  const Emulator again(options);
  EXPECT_EQ(GetFrom(again.url(), "/download?mid=m-1101&rtyp=s").body, std::string("a\0b", 3));
}

}  // namespace
}  // namespace stowra_emulator
