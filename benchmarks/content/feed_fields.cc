// SPDX-License-Identifier: MIT
#include "benchmarks/content/feed_fields.h"

#include "common_stowraapi/content/content_item.h"

namespace stowra_bench {
namespace {

std::string Utf8(const std::string& text) { return text; }
std::string Utf8(const QString& text) { return text.toStdString(); }
std::string Utf8(const ovrant::utils::ovrant_ustring& text) { return text.utf8(); }

template <typename Text>
FeedFields PeerFields(const Feed<Text>& feed) {
  FeedFields fields = {std::to_string(feed.total_results),
                       std::to_string(feed.start_index),
                       std::to_string(feed.items_per_page),
                       Utf8(feed.next_url),
                       Utf8(feed.previous_url),
                       Utf8(feed.self_url),
                       Utf8(feed.html_url),
                       Utf8(feed.title)};
  for (const FeedItem<Text>& item : feed.items) {
    for (const bool flag : {item.kind == Kind::kModel, item.download_format == DownloadFormat::kK2,
                            item.download_format == DownloadFormat::kQmf, item.dynamic_component,
                            item.classified_component}) {
      fields.push_back(flag ? "yes" : "no");
    }
    for (const Text* text :
         {&item.id, &item.title, &item.summary, &item.author_name, &item.author_uri,
          &item.user_query_url, &item.author_id, &item.thumbnail_url, &item.download_url,
          &item.collection_feed_url, &item.html_url}) {
      fields.push_back(Utf8(*text));
    }
  }
  return fields;
}

}  // namespace

FeedFields FieldsOf(const ovrant::stowraapiclient::ContentQuery& query) {
  namespace api = ovrant::stowraapiclient;
  Feed<ovrant::utils::ovrant_ustring> feed;
  feed.total_results = query.total_results_;
  feed.start_index = query.start_index_;
  feed.items_per_page = query.items_per_page_;
  feed.next_url = query.next_url_;
  feed.previous_url = query.previous_url_;
  feed.self_url = query.self_url_;
  feed.html_url = query.html_url_;
  feed.title = query.title_;
  for (const api::ContentItem* item : query.items_) {
    auto& copy = feed.items.emplace_back();
    copy.kind = item->kind_ == api::kModel ? Kind::kModel : Kind::kCollection;
    copy.download_format = item->download_format_ == api::kK2Download    ? DownloadFormat::kK2
                           : item->download_format_ == api::kQmfDownload ? DownloadFormat::kQmf
                                                                         : DownloadFormat::kNone;
    copy.id = item->id_;
    copy.title = item->title_;
    copy.summary = item->summary_;
    copy.author_name = item->author_name_;
    copy.author_uri = item->author_uri_;
    copy.user_query_url = item->user_query_url_;
    copy.author_id = item->author_id_;
    copy.thumbnail_url = item->thumbnail_url_;
    copy.download_url = item->download_url_;
    copy.collection_feed_url = item->collection_feed_url_;
    copy.html_url = item->html_url_;
    copy.dynamic_component = item->dynamic_component_;
    copy.classified_component = item->classified_component_;
  }
  return PeerFields(feed);
}

FeedFields FieldsOf(const StdFeed& feed) { return PeerFields(feed); }
FeedFields FieldsOf(const QtFeed& feed) { return PeerFields(feed); }

}  // namespace stowra_bench
