// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_query.h"

#include <climits>
#include <memory>

#include "common_stowraapi/content/element_list.h"
#include "common_stowraapi/content/entry_reader.h"
#include "common_stowraapi/content/feed_link.h"
#include "common_stowraapi/content/feed_names.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/xml_input.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::stowraapiclient {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;

namespace {

// Filters that every search adds; they are removed from titles. Those with a space go first.
constexpr const char* kSearchOperators[] = {" filetype:qmf", " is:downloadable", "filetype:qmf",
                                            "is:downloadable"};

bool ReadTitle(IXMLInput& reader, ContentQuery& query) {
  if (!reader.GetElementText(FeedNames::Get().title, query.title_)) return false;
  for (const char* search_operator : kSearchOperators) {
    query.title_.replace_all(search_operator, "");
  }
  return true;
}

void ReadLinks(IXMLInput& reader, ContentQuery& query) {
  const FeedNames& names = FeedNames::Get();
  FeedLink link;
  ForEachElement(reader, names.link, [&] {
    if (!ReadLink(reader, link)) return;
    if (link.Is(names.self, names.atom_type)) {
      query.self_url_ = link.href;
    } else if (link.Is(names.next, names.atom_type)) {
      query.next_url_ = link.href;
    } else if (link.Is(names.previous, names.atom_type)) {
      query.previous_url_ = link.href;
    } else if (link.Is(names.alternate, names.html_type)) {
      query.html_url_ = link.href;
    }
  });
}

bool ReadCounts(IXMLInput& reader, ContentQuery& query) {
  const FeedNames& names = FeedNames::Get();
  bool complete = reader.GetElementInt(names.total_results, query.total_results_);
  complete = reader.GetElementInt(names.start_index, query.start_index_) && complete;
  complete = reader.GetElementInt(names.items_per_page, query.items_per_page_) && complete;
  return complete;
}

void ReadEntries(IXMLInput& reader, ContentQuery& query) {
  EntryReader entries(reader);
  ForEachElement(reader, FeedNames::Get().entry, [&] {
    auto item = std::make_unique<ContentItem>();
    item->max_qmf_version_ = query.max_qmf_version_;
    if (!entries.Read(*item)) return;
    query.items_.push_back(item.get());
    static_cast<void>(item.release());
  });
}

bool ReadFeed(IXMLInput& reader, ContentQuery& query) {
  bool complete = false;
  InElement(reader, FeedNames::Get().feed, [&] {
    complete = ReadTitle(reader, query);
    ReadLinks(reader, query);
    complete = ReadCounts(reader, query) && complete;
    ReadEntries(reader, query);
  });
  return complete;
}

struct EndReader {
  void operator()(IXMLInput* reader) const { End_IXMLInput(&reader); }
};
using ReaderHandle = std::unique_ptr<IXMLInput, EndReader>;

}  // namespace

ContentQuery::ContentQuery() { Clear(); }

ContentQuery::~ContentQuery() { Clear(); }

void ContentQuery::Clear() {
  for (const ContentItem* item : items_) delete item;
  items_.clear();
  total_results_ = 0;
  start_index_ = 1;
  items_per_page_ = 12;
  for (ovrant_ustring* text : {&next_url_, &previous_url_, &self_url_, &html_url_, &title_}) {
    text->clear();
  }
}

bool ContentQuery::HasResults() { return !items_.empty(); }

bool ContentQuery::NextValid() { return HasResults() && !next_url_.empty(); }

bool ContentQuery::BackValid() { return HasResults() && !previous_url_.empty(); }

bool ContentQuery::QueryFeed(const ovrant_ustring& url) {
  if (url.empty()) return false;
  return Succeeds([&] {
    InternetData transport(url);
    if (!transport.Download()) return false;
    const unsigned long length = transport.received_data_length();
    // The reader takes an int, and opens nothing of negative length.
    return Load(transport.received_data(), length > INT_MAX ? -1 : static_cast<int>(length));
  });
}

bool ContentQuery::Load(unsigned char* data, int length) {
  Clear();
  const bool succeeded = Succeeds([&] {
    const ReaderHandle reader(Get_IXMLInput(data, length));
    return reader && ReadFeed(*reader, *this);
  });
  if (!succeeded) Clear();
  return succeeded;
}

}  // namespace ovrant::stowraapiclient
