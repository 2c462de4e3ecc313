// SPDX-License-Identifier: MIT
#include "tests/emulator/content_fixture.h"

#include <nlohmann/json.hpp>

namespace stowra_emulator {

httplib::Response ContentTest::Get(const std::string& target, int status) {
  const bool is_whole = target.rfind(emulator_.url(), 0) == 0;
  const httplib::Result result =
      client_.Get(is_whole ? target.substr(emulator_.url().size()) : target);
  EXPECT_TRUE(result) << target << ": " << httplib::to_string(result.error());
  if (!result) return httplib::Response();
  EXPECT_EQ(result->status, status) << target << '\n' << result->body.substr(0, 500);
  return *result;
}

XmlElement ContentTest::GetFeed(const std::string& target) {
  const httplib::Response response = Get(target);
  EXPECT_EQ(response.get_header_value("Content-Type"), "application/atom+xml");
  XmlElement feed = ParseXml(response.body);
  EXPECT_EQ(feed.name, std::string(kAtom) + "feed");
  return feed;
}

XmlElement ContentTest::GetPage(const std::string& target) {
  const httplib::Response response = Get(target);
  EXPECT_EQ(response.get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_EQ(response.body.rfind("<!DOCTYPE html>\n", 0), 0u);
  return ParseXml(response.body);
}

std::string ContentTest::GetError(const std::string& target, int status) {
  const httplib::Response response = Get(target, status);
  EXPECT_EQ(response.get_header_value("Content-Type"), "application/json") << target;
  return nlohmann::json::parse(response.body).value("error", "");
}

std::vector<const XmlElement*> Entries(const XmlElement& feed) {
  return feed.Children(std::string(kAtom) + "entry");
}

std::vector<std::string> Titles(const XmlElement& feed) {
  std::vector<std::string> titles;
  for (const XmlElement* entry : Entries(feed)) {
    titles.push_back(entry->Child(std::string(kAtom) + "title").text);
  }
  return titles;
}

int Total(const XmlElement& feed) {
  return std::stoi("0" + feed.Child(std::string(kOpenSearch) + "totalResults").text);
}

std::string MidOf(const std::string& address) {
  const std::size_t start = address.find("mid=");
  if (start == std::string::npos) return std::string();
  return address.substr(start + 4, address.find('&', start) - start - 4);
}

std::vector<std::string> Models(const XmlElement& feed) {
  std::vector<std::string> mids;
  for (const XmlElement* entry : Entries(feed)) {
    const std::string mid = MidOf(entry->Link("alternate"));
    if (!mid.empty()) mids.push_back(mid);
  }
  return mids;
}

}  // namespace stowra_emulator
