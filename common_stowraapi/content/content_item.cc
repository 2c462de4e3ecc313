#include "common_stowraapi/content/content_item.h"

#include <utility>

#include "common_stowraapi/content/element_list.h"
#include "common_stowraapi/content/feed_link.h"
#include "common_stowraapi/content/feed_names.h"
#include "common_stowraapi/content/text_search.h"
#include "common_stowraapi/platform/url.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

using ovrant::utils::ovrant_ustring;

namespace {

// Values of ContentItem::kind_ and download_format_.
enum Kind { kModel = 0, kCollection = 1 };
enum DownloadFormat { kNoDownload = 0, kK2 = 1, kQmf = 2 };

constexpr char16_t kQmfMark = u's';
constexpr int kVersionOfBareMark = 5;

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool AreDigits(const ovrant_ustring& text) {
  for (unsigned long i = 0; i < text.length(); ++i) {
    if (!IsDigit(text.at(i))) return false;
  }
  return true;
}

bool StartsWithQmfMark(const ovrant_ustring& text) {
  return !text.empty() && text.at(0) == kQmfMark;
}

bool ReadCategory(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = false;
  InElement(reader, names.category, [&] {
    ovrant_ustring term;
    complete = reader.GetAttribute(names.term, term);
    if (complete) item.kind_ = term == names.model ? kModel : kCollection;
  });
  return complete;
}

bool ReadLinks(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = true;
  FeedLink link;
  const bool found = ForEachElement(reader, names.link, [&] {
    if (!ReadLink(reader, link)) {
      complete = false;
    } else if (link.Is(names.user_query, names.atom_type)) {
      std::swap(item.user_query_url_, link.href);
    } else if (link.Is(names.alternate, names.html_type)) {
      std::swap(item.html_url_, link.href);
    }
  });
  return found && complete;
}

bool ReadCollectionFeed(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = false;
  InElement(reader, names.content, [&] {
    ovrant_ustring type;
    ovrant_ustring src;
    complete = reader.GetAttribute(names.type, type) && reader.GetAttribute(names.src, src) &&
               type == names.atom_type;
    if (complete) item.collection_feed_url_ = src + "&q=is:downloadable";
  });
  return complete;
}

// The value of the parameter "uq"; empty without one.
ovrant_ustring FindAuthorId(const ovrant_ustring& uri) {
  const FeedNames& names = FeedNames::Get();
  const int marker = FindText(uri, names.author_parameter, 0);
  if (marker == kAbsent) return {};
  const int begin = marker + Length(names.author_parameter);
  int end = FindText(uri, names.parameter_end, begin);
  if (end == kAbsent) end = Length(uri);
  return uri.Mid(begin, end - begin);
}

bool ReadAuthor(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = false;
  InElement(reader, names.author, [&] {
    const bool has_name = reader.GetElementText(names.author_name, item.author_name_);
    const bool has_uri = reader.GetElementText(names.author_uri, item.author_uri_);
    if (has_uri) item.author_id_ = FindAuthorId(item.author_uri_);
    complete = has_name && has_uri;
  });
  return complete;
}

bool ReadThumbnails(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = true;
  ovrant_ustring url;
  const bool found = ForEachElement(reader, names.media_thumbnail, [&] {
    if (!reader.GetAttribute(names.url, url)) {
      complete = false;
    } else if (Contains(url, names.small_thumbnail)) {
      std::swap(item.thumbnail_url_, url);
    }
  });
  return found && complete;
}

// Whether the rendition `url` is better than the item's download so far, of version `best`; the
// format and the version are then taken over.
bool IsBetterDownload(const ovrant_ustring& url, int& best, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  ovrant_ustring rendition;
  if (!ovrant::internet::URL(url).getValueForExtraInfoKey(names.rendition, rendition)) return false;
  if (rendition == names.k2_rendition) {
    if (item.download_format_ != kNoDownload) return false;
    item.download_format_ = kK2;
    return true;
  }
  int version = 0;
  if (!item.ExtractQmfVersionFromRTypValue(rendition, version)) return false;
  if (version > item.max_qmf_version_ || version <= best) return false;
  item.download_format_ = kQmf;
  best = version;
  return true;
}

bool ReadDownload(IXMLInput& reader, ContentItem& item) {
  const FeedNames& names = FeedNames::Get();
  bool complete = true;
  int best = 0;
  ovrant_ustring url;
  ovrant_ustring type;
  ForEachElement(reader, names.media_content, [&] {
    if (!reader.GetAttribute(names.url, url) || !reader.GetAttribute(names.type, type)) {
      complete = false;
    } else if (type == names.qmf_type || type == names.kmz_type) {
      if (IsBetterDownload(url, best, item)) std::swap(item.download_url_, url);
    }
  });
  return complete && !item.download_url_.empty();
}

}  // namespace

ContentItem::ContentItem() { Clear(); }

ContentItem::~ContentItem() { delete[] thumbnail_buffer_; }

void ContentItem::Clear() {
  kind_ = kCollection;
  download_format_ = kNoDownload;
  for (ovrant_ustring* text :
       {&id_, &title_, &summary_, &author_name_, &author_uri_, &user_query_url_, &author_id_,
        &thumbnail_url_, &download_url_, &collection_feed_url_, &html_url_}) {
    text->clear();
  }
  dynamic_component_ = false;
  classified_component_ = false;
  thumbnail_size_ = 0;
  thumbnail_buffer_ = nullptr;
}

void ContentItem::SetThumbnailBuffer(int size, unsigned char* buffer) {
  delete[] thumbnail_buffer_;
  thumbnail_size_ = size;
  thumbnail_buffer_ = buffer;
}

bool ContentItem::Load(IXMLInput* reader) {
  const FeedNames& names = FeedNames::Get();
  Clear();
  bool complete = reader->GetElementText(names.id, id_);
  complete = ReadCategory(*reader, *this) && complete;
  complete = reader->GetElementText(names.title, title_) && complete;
  reader->GetElementText(names.summary, summary_);
  complete = ReadLinks(*reader, *this) && complete;
  if (kind_ == kCollection) complete = ReadCollectionFeed(*reader, *this) && complete;
  complete = ReadAuthor(*reader, *this) && complete;
  reader->GetElementBool(names.dynamic_component, dynamic_component_);
  reader->GetElementBool(names.classified_component, classified_component_);
  const bool has_group = InElement(*reader, names.media_group, [&] {
    complete = ReadThumbnails(*reader, *this) && complete;
    if (kind_ == kModel) complete = ReadDownload(*reader, *this) && complete;
  });
  return has_group && complete;
}

bool ContentItem::ExtractQmfVersionFromRTypValue(ovrant_ustring value, int& version) {
  if (!StartsWithQmfMark(value)) return false;
  const ovrant_ustring digits = value.Right(Length(value) - 1);
  if (!AreDigits(digits)) return false;
  version = digits.empty() ? kVersionOfBareMark : digits.to_int();
  return true;
}

}  // namespace ovrant::stowraapiclient
