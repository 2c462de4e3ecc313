// SPDX-License-Identifier: MIT
#include "tests/host/content_replies.h"

namespace stowra_test {

namespace {

constexpr char kSchema[] = "http://schemas.stowra.example/stowra/2008";

std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += c == '&' ? std::string("&amp;") : std::string(1, c);
  return escaped;
}

std::string Link(const std::string& rel, const std::string& type, const std::string& href) {
  return "<link rel='" + rel + "' type='" + type + "' href='" + Escape(href) + "'/>";
}

std::string FeedLink(const std::string& rel, const std::string& href) {
  return href.empty() ? "" : Link(rel, "application/atom+xml", href);
}

std::string Entry(const std::string& kind, const std::string& id, const std::string& title,
                  const std::string& more) {
  return "<entry><id>" + id + "</id><category term='" + kSchema + "#" + kind + "'/><title>" +
         Escape(title) + "</title><author><name>Zoë</name><uri>http://a/?uq=u-1</uri></author>" +
         Link("alternate", "text/html", "http://w/" + id) + more + "</entry>";
}

std::string Rendition(const std::string& url, const std::string& type) {
  return "<m:content url='" + url + "' type='application/vnd." + type + "'/>";
}

}  // namespace

std::string ModelEntry(const std::string& id, const std::string& title) {
  return Entry("model", id, title,
               "<m:group><m:thumbnail url='http://t/" + id + "?rtyp=st'/>" +
                   Rendition("http://f/" + id + ".kmz?rtyp=k2", "pellamy.kmz") +
                   Rendition("http://f/" + id + ".qmf?rtyp=s7", "brevix.qmf") + "</m:group>");
}

std::string CollectionEntry(const std::string& id, const std::string& title) {
  return Entry("collection", id, title,
               "<summary>All of it</summary>" +
                   FeedLink(std::string(kSchema) + "#user.query", "http://q/" + id) +
                   "<content type='application/atom+xml' src='http://c/?x=1'/>"
                   "<s:dynamicComponent>true</s:dynamicComponent>"
                   "<s:classifiedComponent>true</s:classifiedComponent>"
                   "<m:group><m:thumbnail url='http://t/" +
                   id + "?rtyp=st'/></m:group>");
}

std::string Feed(const FeedText& feed) {
  const auto count = [](const std::string& name, int value) {
    return "<o:" + name + ">" + std::to_string(value) + "</o:" + name + ">";
  };
  std::string text =
      "<?xml version='1.0' encoding='UTF-8'?><feed xmlns='http://www.w3.org/2005/Atom' "
      "xmlns:o='http://a9.com/-/spec/opensearchrss/1.0/' "
      "xmlns:m='http://search.yahoo.com/mrss/' xmlns:s='" +
      std::string(kSchema) + "'><title>chair is:downloadable</title>" +
      FeedLink("self", "http://q/self") + FeedLink("next", feed.next) +
      FeedLink("previous", feed.previous) + Link("alternate", "text/html", "http://w/all") +
      count("totalResults", feed.total) + count("startIndex", feed.start) +
      count("itemsPerPage", feed.per_page);
  for (const std::string& entry : feed.entries) text += entry;
  return text + "</feed>";
}

std::string Config(const std::vector<ConfigFile>& files) {
  std::string text =
      "<upload><successUrl>http://r/yes</successUrl><failureUrl>http://r/no</failureUrl><files>";
  for (const ConfigFile& file : files) {
    text += "<file><uploadUrl>" + Escape(file.url) + "</uploadUrl><type>t/u</type><zipped>" +
            (file.zipped ? "true" : "false") +
            "</zipped><format>qmf</format><width>64</width><height>48</height>"
            "<name>Stühle</name></file>";
  }
  return text + "</files></upload>";
}

}  // namespace stowra_test
