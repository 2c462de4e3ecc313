// SPDX-License-Identifier: MIT
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/item_address.h"
#include "emulator/content/picture_size.h"
#include "emulator/content/search_query.h"
#include "emulator/markup_writer.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

constexpr const char* kAtomType = "application/atom+xml";
constexpr const char* kContentSchema = "http://schemas.stowra.example/stowra/2008";

const char* TextOf(bool flag) { return flag ? "true" : "false"; }

void WriteLink(MarkupWriter& feed, const std::string& rel, const std::string& href,
               const char* type) {
  feed.Empty("link", {{"rel", rel}, {"href", href}, {"type", type}});
}

void WriteFeedLinks(MarkupWriter& feed, const std::string& site, const SearchQuery& query,
                    int total) {
  const std::string path = site + "/search";
  WriteLink(feed, "self", SearchAddress(path, query), kAtomType);
  WriteLink(feed, "alternate", SearchAddress(site + "/search.html", query), "text/html");
  if (HasNextPage(query, total)) {
    WriteLink(feed, "next", SearchAddress(path, NextPage(query)), kAtomType);
  }
  if (HasPreviousPage(query, total)) {
    WriteLink(feed, "previous", SearchAddress(path, PreviousPage(query, total)), kAtomType);
  }
}

// Clients remove the operators before they show it.
std::string TitleOf(const SearchQuery& query, const std::string& description) {
  if (query.text.empty() && description.empty()) return "All models and collections";
  if (query.text.empty() || description.empty()) return description + query.text;
  return description + " " + query.text;
}

// Clients append "&q=...", so the address must already have a parameter.
std::string CollectionFeedAddress(const std::string& site, const Item& item) {
  return site + "/search?collection=" + PercentEncode(item.mid);
}

void WriteAuthor(MarkupWriter& feed, const std::string& site, const Item& item) {
  feed.Begin("author");
  feed.Element("name", item.author_name);
  feed.Element("uri", AuthorPageAddress(site, item.author));
  feed.End();
}

void WriteMedia(MarkupWriter& feed, const std::string& site, const Item& item) {
  feed.Begin("media:group");
  for (const PictureSize& size : PictureSizes()) {
    feed.Empty("media:thumbnail", {{"url", ThumbnailAddress(site, item.mid, size.rtyp)},
                                   {"width", std::to_string(size.width)},
                                   {"height", std::to_string(size.height)}});
  }
  for (const Rendition& rendition : item.renditions) {
    feed.Empty("media:content", {{"url", DownloadAddress(site, item.mid, rendition.rtyp)},
                                 {"type", rendition.type}});
  }
  feed.End();
}

void WriteEntry(MarkupWriter& feed, const std::string& site, const Item& item) {
  feed.Begin("entry");
  feed.Element("id", "tag:content.stowra.example,2024:" + item.mid);
  feed.Empty("category", {{"term", std::string(kContentSchema) +
                                       (item.is_collection ? "#collection" : "#model")}});
  feed.Element("title", item.title);
  feed.Element("updated", item.updated);
  feed.Element("summary", item.summary);
  SearchQuery same_author;
  same_author.author = item.author;
  same_author.except = item.mid;
  WriteLink(feed, "alternate", PageAddress(site, item), "text/html");
  WriteLink(feed, std::string(kContentSchema) + "#user.query",
            SearchAddress(site + "/search", same_author), kAtomType);
  if (item.is_collection) {
    feed.Empty("content", {{"type", kAtomType}, {"src", CollectionFeedAddress(site, item)}});
  }
  WriteAuthor(feed, site, item);
  feed.Element("schema:dynamicComponent", TextOf(item.dynamic_component));
  feed.Element("schema:classifiedComponent", TextOf(item.classified_component));
  WriteMedia(feed, site, item);
  feed.End();
}

}  // namespace

void AnswerSearch(const Call& call, httplib::Response& response) {
  const SearchQuery query = ReadSearchQuery(call.request);
  const ItemPage page = Search(call.database, query);
  const std::string site = SiteAddress(call.request);

  MarkupWriter feed(R"(<?xml version="1.0" encoding="UTF-8"?>)");
  feed.Begin("feed", {{"xmlns", "http://www.w3.org/2005/Atom"},
                      {"xmlns:opensearch", "http://a9.com/-/spec/opensearchrss/1.0/"},
                      {"xmlns:media", "http://search.yahoo.com/mrss/"},
                      {"xmlns:schema", kContentSchema}});
  feed.Element("id", SearchAddress(site + "/search", query));
  feed.Element("title", TitleOf(query, page.description));
  feed.Element("updated", page.updated);
  WriteFeedLinks(feed, site, query, page.total);
  feed.Element("opensearch:totalResults", std::to_string(page.total));
  feed.Element("opensearch:startIndex", std::to_string(query.start));
  feed.Element("opensearch:itemsPerPage", std::to_string(query.count));
  for (const Item& item : page.items) WriteEntry(feed, site, item);
  response.set_content(feed.Finish(), kAtomType);
}

}  // namespace stowra_emulator
