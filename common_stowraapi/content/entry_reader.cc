// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/entry_reader.h"

#include <utility>

#include "common_stowraapi/content/element_list.h"
#include "common_stowraapi/content/item_values.h"
#include "common_stowraapi/content/text_search.h"
#include "common_stowraapi/platform/url.h"

namespace ovrant::stowraapiclient {

using ovrant::utils::ovrant_ustring;

namespace {

// The value of the parameter "uq". Empty if it is absent.
ovrant_ustring FindAuthorId(const ovrant_ustring& uri) {
  const FeedNames& names = FeedNames::Get();
  const int marker = FindText(uri, names.author_parameter, 0);
  if (marker == kAbsent) return {};
  const int begin = marker + Length(names.author_parameter);
  int end = FindText(uri, names.parameter_end, begin);
  if (end == kAbsent) end = Length(uri);
  return uri.Mid(begin, end - begin);
}

}  // namespace

bool EntryReader::Read(ContentItem& item) {
  bool complete = reader_.GetElementText(names_.id, item.id_);
  complete = ReadCategory(item) && complete;
  complete = reader_.GetElementText(names_.title, item.title_) && complete;
  reader_.GetElementText(names_.summary, item.summary_);
  complete = ReadLinks(item) && complete;
  if (item.kind_ == kCollection) complete = ReadCollectionFeed(item) && complete;
  complete = ReadAuthor(item) && complete;
  reader_.GetElementBool(names_.dynamic_component, item.dynamic_component_);
  reader_.GetElementBool(names_.classified_component, item.classified_component_);
  const bool has_group = InElement(reader_, names_.media_group, [&] {
    complete = ReadThumbnails(item) && complete;
    if (item.kind_ == kModel) complete = ReadDownload(item) && complete;
  });
  return has_group && complete;
}

bool EntryReader::ReadCategory(ContentItem& item) {
  bool complete = false;
  InElement(reader_, names_.category, [&] {
    complete = reader_.GetAttribute(names_.term, term_);
    if (complete) item.kind_ = term_ == names_.model ? kModel : kCollection;
  });
  return complete;
}

bool EntryReader::ReadLinks(ContentItem& item) {
  bool complete = true;
  const bool found = ForEachElement(reader_, names_.link, [&] {
    if (!ReadLink(reader_, link_)) {
      complete = false;
    } else if (link_.Is(names_.user_query, names_.atom_type)) {
      std::swap(item.user_query_url_, link_.href);
    } else if (link_.Is(names_.alternate, names_.html_type)) {
      std::swap(item.html_url_, link_.href);
    }
  });
  return found && complete;
}

bool EntryReader::ReadCollectionFeed(ContentItem& item) {
  bool complete = false;
  InElement(reader_, names_.content, [&] {
    complete = reader_.GetAttribute(names_.type, type_) && reader_.GetAttribute(names_.src, url_) &&
               type_ == names_.atom_type;
    if (complete) item.collection_feed_url_ = url_ + "&q=is:downloadable";
  });
  return complete;
}

bool EntryReader::ReadAuthor(ContentItem& item) {
  bool complete = false;
  InElement(reader_, names_.author, [&] {
    const bool has_name = reader_.GetElementText(names_.author_name, item.author_name_);
    const bool has_uri = reader_.GetElementText(names_.author_uri, item.author_uri_);
    if (has_uri) item.author_id_ = FindAuthorId(item.author_uri_);
    complete = has_name && has_uri;
  });
  return complete;
}

bool EntryReader::ReadThumbnails(ContentItem& item) {
  bool complete = true;
  const bool found = ForEachElement(reader_, names_.media_thumbnail, [&] {
    if (!reader_.GetAttribute(names_.url, url_)) {
      complete = false;
    } else if (Contains(url_, names_.small_thumbnail)) {
      std::swap(item.thumbnail_url_, url_);
    }
  });
  return found && complete;
}

bool EntryReader::ReadDownload(ContentItem& item) {
  bool complete = true;
  int best = 0;
  ForEachElement(reader_, names_.media_content, [&] {
    if (!reader_.GetAttribute(names_.url, url_) || !reader_.GetAttribute(names_.type, type_)) {
      complete = false;
    } else if (type_ == names_.qmf_type || type_ == names_.kmz_type) {
      TakeDownloadIfBetter(item, best);
    }
  });
  return complete && !item.download_url_.empty();
}

// Makes the rendition at url_ the item's download if it is better than the one so far, which has
// version `best`.
void EntryReader::TakeDownloadIfBetter(ContentItem& item, int& best) {
  if (!ovrant::internet::URL(url_).getValueForExtraInfoKey(names_.rendition, rendition_)) return;
  if (rendition_ == names_.k2_rendition) {
    if (item.download_format_ != kNoDownload) return;
    item.download_format_ = kK2Download;
  } else {
    int version = 0;
    if (!item.ExtractQmfVersionFromRTypValue(rendition_, version)) return;
    if (version > item.max_qmf_version_ || version <= best) return;
    item.download_format_ = kQmfDownload;
    best = version;
  }
  std::swap(item.download_url_, url_);
}

}  // namespace ovrant::stowraapiclient
