// SPDX-License-Identifier: MIT
#include "tests/emulator/content_fixture.h"

#include "tests/support/event.h"

namespace stowra_emulator {

httplib::Client PatientClient(const std::string& url) {
  httplib::Client client(url);
  client.set_read_timeout(stowra_test::kPatience);
  client.set_write_timeout(stowra_test::kPatience);
  return client;
}

httplib::Response ResponseOf(const httplib::Result& result, int status) {
  EXPECT_TRUE(result) << httplib::to_string(result.error());
  if (!result) return httplib::Response();
  EXPECT_EQ(result->status, status) << result->body.substr(0, 500);
  return *result;
}

httplib::MultipartFormDataItems FormOf(const std::string& name, const std::string& bytes,
                                       const std::string& type) {
  return {{"name", name, "", ""},
          {"subjectId", "m42", "", ""},
          {"subjectClass", "entity", "", ""},
          {"binary", bytes, "chair.qmf", type}};
}

httplib::Response ContentTest::Get(const std::string& target, int status) {
  SCOPED_TRACE(target);
  const bool is_whole = target.rfind(emulator_.url(), 0) == 0;
  return ResponseOf(client_.Get(is_whole ? target.substr(emulator_.url().size()) : target), status);
}

XmlElement ContentTest::GetFeed(const std::string& target) {
  const httplib::Response response = Get(target);
  EXPECT_EQ(response.get_header_value("Content-Type"), "application/atom+xml");
  XmlElement feed = ParseXml(response.body);
  EXPECT_EQ(feed.name, Atom("feed"));
  return feed;
}

std::vector<std::string> ContentTest::TitlesFor(const std::string& query) {
  return Titles(GetFeed("/search?q=" + query));
}

int ContentTest::CountOf(const std::string& query) { return Total(GetFeed("/search?q=" + query)); }

XmlElement ContentTest::GetPage(const std::string& target) {
  const httplib::Response response = Get(target);
  EXPECT_EQ(response.get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_EQ(response.body.rfind("<!DOCTYPE html>\n", 0), 0u);
  return ParseXml(response.body);
}

nlohmann::json ContentTest::GetJson(const std::string& target, int status) {
  const httplib::Response response = Get(target, status);
  EXPECT_EQ(response.get_header_value("Content-Type"), "application/json") << target;
  return nlohmann::json::parse(response.body);
}

std::vector<const XmlElement*> Entries(const XmlElement& feed) {
  return feed.Children(Atom("entry"));
}

std::vector<std::string> Titles(const XmlElement& feed) {
  std::vector<std::string> titles;
  for (const XmlElement* entry : Entries(feed)) titles.push_back(TitleOf(*entry));
  return titles;
}

int Total(const XmlElement& feed) {
  return std::stoi("0" + feed.Child(OpenSearch("totalResults")).text);
}

std::string TitleOf(const XmlElement& element) { return element.Child(Atom("title")).text; }

std::vector<const XmlElement*> Contents(const XmlElement& entry) {
  return entry.Child(Media("group")).Children(Media("content"));
}

std::vector<std::string> Models(const XmlElement& feed) {
  std::vector<std::string> mids;
  for (const XmlElement* entry : Entries(feed)) {
    const std::string address = entry->Link("alternate");
    const std::size_t start = address.find("mid=");
    if (start == std::string::npos) continue;
    mids.push_back(address.substr(start + 4, address.find('&', start) - start - 4));
  }
  return mids;
}

}  // namespace stowra_emulator
