// SPDX-License-Identifier: MIT
#include "tests/content/feed_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace stowra_test {
namespace {

const std::string kNamespaces =
    " xmlns='http://www.w3.org/2005/Atom' xmlns:o='http://a9.com/-/spec/opensearchrss/1.0/'"
    " xmlns:m='http://search.yahoo.com/mrss/' xmlns:s='" +
    std::string(kSchema) + "'";

std::string Category(const char* term) {
  return "<category term='" + std::string(kSchema) + term + "'/>";
}

Parts Entry(const char* term, const std::string& content, const std::string& contents) {
  return Parts("<entry>",
               {{"id", "<id>urn:1</id>"},
                {"category", Category(term)},
                {"title", "<title>Chair</title>"},
                {"summary", "<summary>A chair</summary>"},
                {"link", Link("alternate", "http://page/", "text/html")},
                {"content", content},
                {"author", "<author><name>Ann</name><uri>http://ann/?uq=7&amp;x=y</uri></author>"},
                {"flags", ""},
                {"group", Group(contents)}},
               "</entry>");
}

}  // namespace

Parts::Parts(std::string before, List parts, std::string after)
    : before_(std::move(before)), parts_(std::move(parts)), after_(std::move(after)) {}

Parts Parts::With(std::string_view name, std::string_view text) const {
  Parts changed = *this;
  bool found = false;
  for (auto& [part_name, part_text] : changed.parts_) {
    if (part_name != name) continue;
    part_text = text;
    found = true;
  }
  EXPECT_TRUE(found) << name;
  return changed;
}

std::string Parts::text() const {
  std::string text = before_;
  for (const auto& part : parts_) text += part.second;
  return text + after_;
}

std::vector<std::string> Parts::names() const {
  std::vector<std::string> names;
  for (const auto& part : parts_) names.push_back(part.first);
  return names;
}

std::string Tag(const std::string& name, std::string_view text) {
  return "<" + name + ">" + std::string(text) + "</" + name + ">";
}

Parts Feed() {
  return Parts("<feed" + kNamespaces + ">",
               {{"title", "<title>chairs</title>"},
                {"links", ""},
                {"total", "<o:totalResults>40</o:totalResults>"},
                {"start", "<o:startIndex>13</o:startIndex>"},
                {"per_page", "<o:itemsPerPage>6</o:itemsPerPage>"},
                {"entries", ""}},
               "</feed>");
}

std::string FeedOf(std::string_view entries) { return Feed().With("entries", entries).text(); }

Parts Model() { return Entry("#model", "", Rendition("http://files/1?rtyp=k2")); }

Parts Collection() {
  return Entry("#collection", "<content type='application/atom+xml' src='http://feed/'/>", "");
}

std::string Group(std::string_view contents) {
  return "<m:group><m:thumbnail url='http://pictures/1?rtyp=st'/>" + std::string(contents) +
         "</m:group>";
}

std::string Rendition(std::string_view url, std::string_view type) {
  return "<m:content url='" + std::string(url) + "' type='" + std::string(type) + "'/>";
}

std::string Link(std::string_view rel, std::string_view href, std::string_view type) {
  return "<link rel='" + std::string(rel) + "' href='" + std::string(href) + "' type='" +
         std::string(type) + "'/>";
}

}  // namespace stowra_test
