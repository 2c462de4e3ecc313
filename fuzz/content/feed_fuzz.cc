// SPDX-License-Identifier: MIT
// Loads a search feed, and each entry alone, and compares both with a second reader. The input is a
// byte for the newest version that the host opens, then the feed.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"
#include "fuzz/content/feed_model.h"
#include "fuzz/platform/xml/tree.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::IXMLInput;
using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::FeedModel;
using stowra_fuzz::ItemModel;
using stowra_fuzz::XmlNode;
using stowra_fuzz::XmlTree;

// Fills each member.
constexpr std::string_view kFeedBefore =
    "<feed xmlns='http://www.w3.org/2005/Atom' xmlns:m='http://search.yahoo.com/mrss/'"
    " xmlns:o='http://a9.com/-/spec/opensearchrss/1.0/'><title>before</title>"
    "<o:totalResults>-1</o:totalResults><o:startIndex>-2</o:startIndex>"
    "<o:itemsPerPage>-3</o:itemsPerPage>"
    "<link rel='self' href='before' type='application/atom+xml'/>"
    "<link rel='next' href='before' type='application/atom+xml'/>"
    "<link rel='previous' href='before' type='application/atom+xml'/>"
    "<link rel='alternate' href='before' type='text/html'/>"
    "<entry><id>1</id><category term='c'/><title>t</title><link rel='r' href='h' type='t'/>"
    "<content type='application/atom+xml' src='s'/><author><name>n</name><uri>u</uri></author>"
    "<m:group><m:thumbnail url='x'/></m:group></entry></feed>";

int MaxVersion(std::uint8_t byte) {
  if (byte == 255) return std::numeric_limits<int>::max();
  return byte == 254 ? -1 : byte;
}

bool Load(std::string_view bytes, ContentQuery& query) {
  std::vector<unsigned char> copy(bytes.begin(), bytes.end());
  return query.Load(copy.data(), static_cast<int>(copy.size()));
}

void CheckItem(const ContentItem& item, const ItemModel& model) {
  FUZZ_CHECK(item.kind_ == model.kind);
  FUZZ_CHECK(item.download_format_ == model.download_format);
  FUZZ_CHECK(item.id_.utf8() == model.id);
  FUZZ_CHECK(item.title_.utf8() == model.title);
  FUZZ_CHECK(item.summary_.utf8() == model.summary);
  FUZZ_CHECK(item.author_name_.utf8() == model.author_name);
  FUZZ_CHECK(item.author_uri_.utf8() == model.author_uri);
  FUZZ_CHECK(item.user_query_url_.utf8() == model.user_query_url);
  FUZZ_CHECK(item.author_id_.utf8() == model.author_id);
  FUZZ_CHECK(item.thumbnail_url_.utf8() == model.thumbnail_url);
  FUZZ_CHECK(item.download_url_.utf8() == model.download_url);
  FUZZ_CHECK(item.collection_feed_url_.utf8() == model.collection_feed_url);
  FUZZ_CHECK(item.html_url_.utf8() == model.html_url);
  FUZZ_CHECK(item.dynamic_component_ == model.dynamic_component);
  FUZZ_CHECK(item.classified_component_ == model.classified_component);
  FUZZ_CHECK(item.thumbnail_size_ == 0 && item.thumbnail_buffer_ == nullptr);
}

void CheckFeed(ContentQuery& query, const FeedModel& model) {
  FUZZ_CHECK(query.total_results_ == model.total_results);
  FUZZ_CHECK(query.start_index_ == model.start_index);
  FUZZ_CHECK(query.items_per_page_ == model.items_per_page);
  FUZZ_CHECK(query.next_url_.utf8() == model.next_url);
  FUZZ_CHECK(query.previous_url_.utf8() == model.previous_url);
  FUZZ_CHECK(query.self_url_.utf8() == model.self_url);
  FUZZ_CHECK(query.html_url_.utf8() == model.html_url);
  FUZZ_CHECK(query.title_.utf8() == model.title);
  FUZZ_CHECK(query.items_.size() == model.items.size());
  for (std::size_t i = 0; i < model.items.size(); ++i) {
    FUZZ_CHECK(query.items_[i]->max_qmf_version_ == query.max_qmf_version_);
    CheckItem(*query.items_[i], model.items[i]);
  }
  FUZZ_CHECK(query.HasResults() == !model.items.empty());
  FUZZ_CHECK(query.NextValid() == (query.HasResults() && !model.next_url.empty()));
  FUZZ_CHECK(query.BackValid() == (query.HasResults() && !model.previous_url.empty()));
}

// Reads each entry, complete or not, into one item. That shows what an earlier entry left there.
void CheckEntries(std::string_view bytes, const XmlNode& document, int max_version) {
  const std::unique_ptr<IXMLInput> reader(ovrant::Get_IXMLInput(
      reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size())));
  FUZZ_CHECK(reader != nullptr);
  const XmlNode* const root = document.Child(stowra_fuzz::kFeedName);
  FUZZ_CHECK(reader->FindElement(stowra_fuzz::kFeedName) == (root != nullptr));
  if (root == nullptr) return;
  const ovrant_ustring entry_name(stowra_fuzz::kEntryName);
  ContentItem item;
  item.max_qmf_version_ = max_version;
  const XmlNode* entry = root->Child(stowra_fuzz::kEntryName);
  if (entry == nullptr) return;
  FUZZ_CHECK(reader->FindElement(entry_name));
  while (entry != nullptr) {
    ItemModel model;
    const bool is_complete = stowra_fuzz::ReadEntry(*entry, max_version, model);
    FUZZ_CHECK(item.Load(reader.get()) == is_complete);
    CheckItem(item, model);
    entry = entry->NextSibling(stowra_fuzz::kEntryName);
    FUZZ_CHECK(reader->NextElement(entry_name) == (entry != nullptr));
  }
  FUZZ_CHECK(reader->LeaveElement(entry_name));
  FUZZ_CHECK(reader->LeaveElement(stowra_fuzz::kFeedName));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const int max_version = MaxVersion(input.Byte());
  const std::string_view bytes = input.Rest();

  ContentQuery query;
  query.max_qmf_version_ = max_version;
  CheckFeed(query, FeedModel());
  FUZZ_CHECK(Load(kFeedBefore, query));
  FUZZ_CHECK(query.items_.size() == 1);
  const bool loaded = Load(bytes, query);
  FUZZ_CHECK(query.max_qmf_version_ == max_version);

  const XmlTree tree(bytes);
  if (tree.verdict() == XmlTree::Verdict::kEither) return 0;
  FeedModel model;
  const bool is_open = tree.verdict() == XmlTree::Verdict::kOpened;
  FUZZ_CHECK(loaded == (is_open && stowra_fuzz::ReadFeed(tree.document(), max_version, model)));
  CheckFeed(query, model);
  if (is_open) CheckEntries(bytes, tree.document(), max_version);
  query.Clear();
  CheckFeed(query, FeedModel());
  return 0;
}
