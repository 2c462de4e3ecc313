// SPDX-License-Identifier: MIT
#include "host/search_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "host/terminal.h"

namespace stowra {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr int kMaxPagesWithoutNews = 100;

}  // namespace

bool SearchPages::Add(const ovrant_ustring& url) {
  urls_.insert(url);
  auto page = std::make_unique<ContentQuery>();
  page->max_qmf_version_ = max_qmf_version_;
  if (!session_.Repeat([&] { return page->QueryFeed(url); })) return false;
  TakeItems(*page);
  pages_.push_back(std::move(page));
  return true;
}

bool SearchPages::AddFollowing() {
  int pages_without_news = 0;
  while (!last().next_url_.empty()) {
    const ovrant_ustring url = last().next_url_;
    if (urls_.count(url) != 0 || pages_without_news == kMaxPagesWithoutNews) {
      Warn(fmt::format("{}: not followed, because the pages repeat", url.utf8()));
      break;
    }
    const std::size_t before = items_.size();
    if (!Add(url)) return false;
    pages_without_news = items_.size() > before ? 0 : pages_without_news + 1;
  }
  return true;
}

ExitStatus SearchPages::Fail() const {
  return session_.Fail(
      "it is not an Atom feed with title, totalResults, startIndex and itemsPerPage");
}

std::string SearchPages::CountText() const {
  const std::int64_t begin = first().start_index_;
  const std::int64_t end = std::min<std::int64_t>(
      std::int64_t{last().start_index_} + last().items_per_page_ - 1, first().total_results_);
  const auto count = static_cast<std::int64_t>(items_.size());
  const bool are_elsewhere = count == 0 && first().total_results_ > 0;
  if (end < begin && are_elsewhere) return fmt::format("none here of {}", first().total_results_);
  if (end < begin) return fmt::format("{} results", count);
  const std::string range =
      fmt::format("results {} to {} of {}", begin, end, first().total_results_);
  return count == end - begin + 1 ? range : fmt::format("{}, usable {}", range, count);
}

void SearchPages::TakeItems(const ContentQuery& page) {
  for (const ContentItem* item : page.items_) {
    const bool is_new = ids_.insert(item->id_).second;
    if (is_new || pages_.empty()) items_.push_back(item);
  }
}

}  // namespace stowra
