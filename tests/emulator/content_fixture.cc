// SPDX-License-Identifier: MIT
#include "tests/emulator/content_fixture.h"

#include <nlohmann/json.hpp>

namespace stowra_emulator {

RawResponse ContentTest::Get(const std::string& target, int status, const std::string& fields) {
  const bool is_whole = target.rfind(emulator_.url(), 0) == 0;
  return GetFrom(emulator_.url(), is_whole ? target.substr(emulator_.url().size()) : target, status,
                 fields);
}

XmlElement ContentTest::GetFeed(const std::string& target) {
  const RawResponse response = Get(target);
  EXPECT_EQ(response.Header("Content-Type"), "application/atom+xml");
  XmlElement feed = ParseXml(response.body);
  EXPECT_EQ(feed.name, Atom("feed"));
  return feed;
}

std::vector<std::string> ContentTest::TitlesFor(const std::string& query) {
  return Titles(GetFeed("/search?q=" + query));
}

int ContentTest::CountOf(const std::string& query) { return Total(GetFeed("/search?q=" + query)); }

XmlElement ContentTest::GetPage(const std::string& target) {
  const RawResponse response = Get(target);
  EXPECT_EQ(response.Header("Content-Type"), "text/html; charset=utf-8");
  EXPECT_EQ(response.body.rfind("<!DOCTYPE html>\n", 0), 0u);
  return ParseXml(response.body);
}

nlohmann::json ContentTest::GetJson(const std::string& target, int status) {
  const RawResponse response = Get(target, status);
  EXPECT_EQ(response.Header("Content-Type"), "application/json") << target;
  return nlohmann::json::parse(response.body);
}

std::string ContentTest::GetError(const std::string& target, int status) {
  return GetJson(target, status).value("error", "");
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
