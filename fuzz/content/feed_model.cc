// SPDX-License-Identifier: MIT
#include "fuzz/content/feed_model.h"

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace stowra_fuzz {

const char* const kFeedName = "http://www.w3.org/2005/Atom:feed";
const char* const kEntryName = "http://www.w3.org/2005/Atom:entry";

namespace {

constexpr char kSchema[] = "http://schemas.stowra.example/stowra/2008";
constexpr char kAtomType[] = "application/atom+xml";
constexpr char kHtmlType[] = "text/html";

std::string Atom(const char* name) { return std::string("http://www.w3.org/2005/Atom:") + name; }
std::string Media(const char* name) { return std::string("http://search.yahoo.com/mrss/:") + name; }
std::string Search(const char* name) {
  return std::string("http://a9.com/-/spec/opensearchrss/1.0/:") + name;
}

// All children of that name.
std::vector<const XmlNode*> Children(const XmlNode& parent, const std::string& name) {
  std::vector<const XmlNode*> children;
  for (const XmlNode* const child : parent.children) {
    if (child->name == name) children.push_back(child);
  }
  return children;
}

bool Take(const std::optional<std::string>& from, std::string& to) {
  if (from) to = *from;
  return from.has_value();
}

void Remove(const std::string& part, std::string& text) {
  std::string rest;
  for (std::size_t i = 0; i < text.size();) {
    if (text.compare(i, part.size(), part) == 0) {
      i += part.size();
    } else {
      rest += text[i++];
    }
  }
  text = rest;
}

std::string Unescaped(const std::string& written) {
  std::string text;
  for (std::size_t i = 0; i < written.size(); ++i) {
    const std::string digits = written.substr(i + 1, 2);
    const bool is_escape = written[i] == '%' && digits.size() == 2 &&
                           digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (is_escape) {
      text += static_cast<char>(std::strtol(digits.c_str(), nullptr, 16));
      i += 2;
    } else {
      text += written[i] == '+' ? ' ' : written[i];
    }
  }
  return text;
}

// The parameter "rtyp" of the URL's query.
std::optional<std::string> Rendition(const std::string& whole_url) {
  const std::string url = whole_url.substr(0, whole_url.find('#'));
  std::size_t at = url.find('?');
  while (at != std::string::npos) {
    const std::size_t end = url.find('&', at + 1);
    const std::string parameter = url.substr(at + 1, end == std::string::npos ? end : end - at - 1);
    if (parameter == "rtyp") return "";
    if (parameter.compare(0, 5, "rtyp=") == 0) return Unescaped(parameter.substr(5));
    at = end;
  }
  return std::nullopt;
}

// Of a model file; nothing for any other rendition.
std::optional<int> Version(const std::string& rendition) {
  if (rendition.empty() || rendition[0] != 's') return std::nullopt;
  if (rendition.size() == 1) return 5;
  long long version = 0;
  for (const char c : rendition.substr(1)) {
    if (c < '0' || c > '9') return std::nullopt;
    if (version < 1LL << 40) version = version * 10 + (c - '0');
  }
  return version >= 1LL << 31 ? 0 : static_cast<int>(version);
}

struct Link {
  explicit Link(const XmlNode& node) {
    complete = Take(node.Attribute("rel"), rel) && Take(node.Attribute("href"), href) &&
               Take(node.Attribute("type"), type);
  }

  bool complete;
  std::string rel;
  std::string href;
  std::string type;
};

bool ReadCategory(const XmlNode& entry, ItemModel& item) {
  const XmlNode* const category = entry.Child(Atom("category"));
  const auto term = category == nullptr ? std::nullopt : category->Attribute("term");
  if (term) item.kind = *term == kSchema + std::string("#model") ? 0 : 1;
  return term.has_value();
}

bool ReadLinks(const XmlNode& entry, ItemModel& item) {
  bool complete = !Children(entry, Atom("link")).empty();
  for (const XmlNode* const node : Children(entry, Atom("link"))) {
    const Link link(*node);
    if (!link.complete) {
      complete = false;
    } else if (link.rel == kSchema + std::string("#user.query") && link.type == kAtomType) {
      item.user_query_url = link.href;
    } else if (link.rel == "alternate" && link.type == kHtmlType) {
      item.html_url = link.href;
    }
  }
  return complete;
}

bool ReadCollection(const XmlNode& entry, ItemModel& item) {
  const XmlNode* const content = entry.Child(Atom("content"));
  if (content == nullptr || content->Attribute("type") != kAtomType) return false;
  const auto source = content->Attribute("src");
  if (source) item.collection_feed_url = *source + "&q=is:downloadable";
  return source.has_value();
}

bool ReadAuthor(const XmlNode& entry, ItemModel& item) {
  const XmlNode* const author = entry.Child(Atom("author"));
  if (author == nullptr) return false;
  const bool has_name = Take(author->ChildText(Atom("name")), item.author_name);
  const bool has_uri = Take(author->ChildText(Atom("uri")), item.author_uri);
  const std::size_t mark = item.author_uri.find("uq=");
  if (mark != std::string::npos) {
    item.author_id = item.author_uri.substr(mark + 3);
    item.author_id = item.author_id.substr(0, item.author_id.find('&'));
  }
  return has_name && has_uri;
}

bool ReadThumbnails(const XmlNode& group, ItemModel& item) {
  const auto thumbnails = Children(group, Media("thumbnail"));
  bool complete = !thumbnails.empty();
  for (const XmlNode* const thumbnail : thumbnails) {
    const auto url = thumbnail->Attribute("url");
    if (!url) complete = false;
    if (url && url->find("rtyp=st") != std::string::npos) item.thumbnail_url = *url;
  }
  return complete;
}

bool ReadDownload(const XmlNode& group, int max_qmf_version, ItemModel& item) {
  bool complete = true;
  int best = 0;
  for (const XmlNode* const content : Children(group, Media("content"))) {
    const auto url = content->Attribute("url");
    const auto type = content->Attribute("type");
    if (!url || !type) {
      complete = false;
      continue;
    }
    if (*type != "application/vnd.brevix.qmf" && *type != "application/vnd.pellamy.kmz") continue;
    const auto rendition = Rendition(*url);
    if (!rendition) continue;
    const auto version = Version(*rendition);
    const bool is_first_k2 = *rendition == "k2" && item.download_format == 0;
    const bool is_better = version && *version <= max_qmf_version && *version > best;
    if (!is_first_k2 && !is_better) continue;
    item.download_url = *url;
    item.download_format = is_better ? 2 : 1;
    if (is_better) best = *version;
  }
  return complete && !item.download_url.empty();
}

}  // namespace

bool ReadEntry(const XmlNode& entry, int max_qmf_version, ItemModel& item) {
  bool complete = Take(entry.ChildText(Atom("id")), item.id);
  complete &= ReadCategory(entry, item);
  complete &= Take(entry.ChildText(Atom("title")), item.title);
  Take(entry.ChildText(Atom("summary")), item.summary);
  complete &= ReadLinks(entry, item);
  if (item.kind == 1) complete &= ReadCollection(entry, item);
  complete &= ReadAuthor(entry, item);
  const std::string schema = std::string(kSchema) + ':';
  item.dynamic_component = entry.ChildBool(schema + "dynamicComponent").value_or(false);
  item.classified_component = entry.ChildBool(schema + "classifiedComponent").value_or(false);
  const XmlNode* const group = entry.Child(Media("group"));
  if (group == nullptr) return false;
  complete &= ReadThumbnails(*group, item);
  if (item.kind == 0) complete &= ReadDownload(*group, max_qmf_version, item);
  return complete;
}

bool ReadFeed(const XmlNode& document, int max_qmf_version, FeedModel& feed) {
  const XmlNode* const root = document.Child(kFeedName);
  if (root == nullptr) return false;
  FeedModel read;
  const bool has_title = Take(root->ChildText(Atom("title")), read.title);
  for (const char* const part :
       {" filetype:qmf", " is:downloadable", "filetype:qmf", "is:downloadable"}) {
    Remove(part, read.title);
  }
  for (const XmlNode* const node : Children(*root, Atom("link"))) {
    const Link link(*node);
    if (!link.complete) continue;
    const bool is_feed = link.type == kAtomType;
    if (link.rel == "self" && is_feed) read.self_url = link.href;
    if (link.rel == "next" && is_feed) read.next_url = link.href;
    if (link.rel == "previous" && is_feed) read.previous_url = link.href;
    if (link.rel == "alternate" && link.type == kHtmlType) read.html_url = link.href;
  }
  const auto total = root->ChildInt(Search("totalResults"));
  const auto start = root->ChildInt(Search("startIndex"));
  const auto per_page = root->ChildInt(Search("itemsPerPage"));
  if (!has_title || !total || !start || !per_page) return false;
  read.total_results = *total;
  read.start_index = *start;
  read.items_per_page = *per_page;
  for (const XmlNode* const entry : Children(*root, kEntryName)) {
    ItemModel item;
    if (ReadEntry(*entry, max_qmf_version, item)) read.items.push_back(item);
  }
  feed = read;
  return true;
}

}  // namespace stowra_fuzz
