// SPDX-License-Identifier: MIT
#include "benchmarks/content/feed_builder.h"

#include "benchmarks/content/feed_text.h"

namespace stowra_bench {
namespace {

constexpr std::string_view kAtomType = "application/atom+xml";
constexpr std::string_view kHtmlType = "text/html";
constexpr std::string_view kQmfType = "application/vnd.brevix.qmf";
constexpr std::string_view kKmzType = "application/vnd.pellamy.kmz";
constexpr std::string_view kModelTerm = "http://schemas.stowra.example/stowra/2008#model";
constexpr std::string_view kUserQuery = "http://schemas.stowra.example/stowra/2008#user.query";

constexpr std::uint32_t Bit(Element element) {
  return std::uint32_t{1} << static_cast<unsigned>(element);
}

constexpr std::uint32_t kNeededInEntry =
    Bit(Element::kId) | Bit(Element::kCategory) | Bit(Element::kTitle) | Bit(Element::kLink) |
    Bit(Element::kName) | Bit(Element::kUri) | Bit(Element::kGroup) | Bit(Element::kThumbnail);

}  // namespace

void Attributes::Set(std::string_view name, std::string_view value) {
  if (name == "url") {
    url = value;
  } else if (name == "type") {
    type = value;
  } else if (name == "rel") {
    rel = value;
  } else if (name == "href") {
    href = value;
  } else if (name == "term") {
    term = value;
  } else if (name == "src") {
    src = value;
  }
}

bool HasAttributes(Element element) {
  constexpr std::uint32_t kWith = Bit(Element::kLink) | Bit(Element::kCategory) |
                                  Bit(Element::kContent) | Bit(Element::kThumbnail) |
                                  Bit(Element::kMediaContent);
  return (Bit(element) & kWith) != 0;
}

FeedBuilder::FeedBuilder(int max_qmf_version, StdFeed& feed)
    : max_qmf_version_(max_qmf_version), feed_(feed) {}

void FeedBuilder::Start(Element element, const Attributes& attributes) {
  if (ignored_ > 0) {
    ++ignored_;
    return;
  }
  if (text_ != nullptr) {
    ++text_depth_;
    return;
  }
  switch (place_) {
    case Place::kDocument:
      if (element != Element::kFeed) return Ignore();
      has_feed_ = true;
      return Enter(Place::kFeed);
    case Place::kFeed:
      return StartInFeed(element, attributes);
    case Place::kEntry:
      return StartInEntry(element, attributes);
    case Place::kAuthor:
      return StartInAuthor(element);
    case Place::kGroup:
      return StartInGroup(element, attributes);
  }
}

void FeedBuilder::Characters(std::string_view text) {
  if (text_ != nullptr) text_->append(text);
}

void FeedBuilder::End() {
  if (ignored_ > 0) {
    --ignored_;
  } else if (text_depth_ > 0) {
    --text_depth_;
  } else if (text_ != nullptr) {
    EndText();
  } else if (place_ == Place::kGroup) {
    Enter(Place::kEntry);
  } else if (place_ == Place::kAuthor) {
    item_.author_id = FindAuthorId(item_.author_uri);
    Enter(Place::kEntry);
  } else if (place_ == Place::kEntry) {
    EndEntry();
    Enter(Place::kFeed);
  } else {
    RemoveSearchOperators(feed_.title);
    Enter(Place::kDocument);
  }
}

bool FeedBuilder::complete() const {
  return has_feed_ && (seen_in_feed_ & Bit(Element::kTitle)) != 0 && counts_ == 3;
}

void FeedBuilder::StartInFeed(Element element, const Attributes& attributes) {
  switch (element) {
    case Element::kEntry:
      StartEntry();
      return Enter(Place::kEntry);
    case Element::kTitle:
      return ReadText(element, feed_.title);
    case Element::kTotalResults:
    case Element::kStartIndex:
    case Element::kItemsPerPage:
      return ReadText(element, value_);
    case Element::kLink:
      TakeFeedLink(attributes);
      return Ignore();
    default:
      return Ignore();
  }
}

void FeedBuilder::StartInEntry(Element element, const Attributes& attributes) {
  switch (element) {
    case Element::kId:
      return ReadText(element, item_.id);
    case Element::kTitle:
      return ReadText(element, item_.title);
    case Element::kSummary:
      return ReadText(element, item_.summary);
    case Element::kDynamicComponent:
    case Element::kClassifiedComponent:
      return ReadText(element, value_);
    case Element::kAuthor:
      return IsFirst(element) ? Enter(Place::kAuthor) : Ignore();
    case Element::kGroup:
      return IsFirst(element) ? Enter(Place::kGroup) : Ignore();
    case Element::kLink:
      TakeLink(attributes);
      return Ignore();
    case Element::kCategory:
      if (IsFirst(element)) {
        is_broken_ |= !attributes.term;
        if (attributes.term == kModelTerm) item_.kind = Kind::kModel;
      }
      return Ignore();
    case Element::kContent:
      TakeContent(attributes);
      return Ignore();
    default:
      return Ignore();
  }
}

void FeedBuilder::StartInAuthor(Element element) {
  if (element == Element::kName) return ReadText(element, item_.author_name);
  if (element == Element::kUri) return ReadText(element, item_.author_uri);
  Ignore();
}

void FeedBuilder::StartInGroup(Element element, const Attributes& attributes) {
  if (element == Element::kMediaContent) TakeRendition(attributes);
  if (element == Element::kThumbnail) TakeThumbnail(attributes);
  Ignore();
}

void FeedBuilder::Enter(Place place) { place_ = place; }

// Skips the current element and all elements inside it.
void FeedBuilder::Ignore() { ignored_ = 1; }

bool FeedBuilder::HasSeen(Element element) const { return (seen_in_entry_ & Bit(element)) != 0; }

bool FeedBuilder::IsFirst(Element element) {
  std::uint32_t& seen = place_ == Place::kFeed ? seen_in_feed_ : seen_in_entry_;
  const bool is_first = (seen & Bit(element)) == 0;
  seen |= Bit(element);
  return is_first;
}

void FeedBuilder::ReadText(Element element, std::string& text) {
  if (!IsFirst(element)) return Ignore();
  text.clear();
  text_ = &text;
  text_element_ = element;
}

void FeedBuilder::EndText() {
  TrimInPlace(*text_);
  text_ = nullptr;
  switch (text_element_) {
    case Element::kTotalResults:
      counts_ += ToInt(value_, feed_.total_results) ? 1 : 0;
      break;
    case Element::kStartIndex:
      counts_ += ToInt(value_, feed_.start_index) ? 1 : 0;
      break;
    case Element::kItemsPerPage:
      counts_ += ToInt(value_, feed_.items_per_page) ? 1 : 0;
      break;
    case Element::kDynamicComponent:
      item_.dynamic_component = IsTrue(value_);
      break;
    case Element::kClassifiedComponent:
      item_.classified_component = IsTrue(value_);
      break;
    default:
      break;
  }
}

void FeedBuilder::TakeFeedLink(const Attributes& attributes) {
  const auto& [rel, href, type, term, src, url] = attributes;
  if (!rel || !href || !type) return;
  if (rel == "self" && type == kAtomType) {
    feed_.self_url = *href;
  } else if (rel == "next" && type == kAtomType) {
    feed_.next_url = *href;
  } else if (rel == "previous" && type == kAtomType) {
    feed_.previous_url = *href;
  } else if (rel == "alternate" && type == kHtmlType) {
    feed_.html_url = *href;
  }
}

void FeedBuilder::TakeLink(const Attributes& attributes) {
  IsFirst(Element::kLink);
  const auto& [rel, href, type, term, src, url] = attributes;
  if (!rel || !href || !type) {
    is_broken_ = true;
  } else if (rel == kUserQuery && type == kAtomType) {
    item_.user_query_url = *href;
  } else if (rel == "alternate" && type == kHtmlType) {
    item_.html_url = *href;
  }
}

void FeedBuilder::TakeContent(const Attributes& attributes) {
  if (!IsFirst(Element::kContent)) return;
  if (attributes.src && attributes.type == kAtomType) {
    item_.collection_feed_url.assign(*attributes.src).append("&q=is:downloadable");
  } else {
    is_collection_broken_ = true;
  }
}

void FeedBuilder::TakeThumbnail(const Attributes& attributes) {
  IsFirst(Element::kThumbnail);
  if (!attributes.url) {
    is_broken_ = true;
  } else if (attributes.url->find("rtyp=st") != std::string_view::npos) {
    item_.thumbnail_url = *attributes.url;
  }
}

void FeedBuilder::TakeRendition(const Attributes& attributes) {
  const auto& [rel, href, type, term, src, url] = attributes;
  if (!url || !type) {
    is_model_broken_ = true;
    return;
  }
  if (type != kQmfType && type != kKmzType) return;
  std::string decoded;
  const std::optional<std::string_view> rendition = FindParameter(*url, "rtyp", decoded);
  if (!rendition) return;
  if (rendition == "k2") {
    if (item_.download_format != DownloadFormat::kNone) return;
    item_.download_url = *url;
    item_.download_format = DownloadFormat::kK2;
    return;
  }
  const int version = QmfVersion(*rendition);
  if (version > max_qmf_version_ || version <= best_version_) return;
  item_.download_url = *url;
  item_.download_format = DownloadFormat::kQmf;
  best_version_ = version;
}

void FeedBuilder::StartEntry() {
  item_ = StdFeedItem();
  seen_in_entry_ = 0;
  is_broken_ = false;
  is_collection_broken_ = false;
  is_model_broken_ = false;
  best_version_ = 0;
}

void FeedBuilder::EndEntry() {
  if (!IsItemComplete()) return;
  if (item_.kind == Kind::kModel) {
    item_.collection_feed_url.clear();
  } else {
    item_.download_url.clear();
    item_.download_format = DownloadFormat::kNone;
  }
  feed_.items.push_back(std::move(item_));
}

bool FeedBuilder::IsItemComplete() const {
  if (is_broken_ || (seen_in_entry_ & kNeededInEntry) != kNeededInEntry) return false;
  if (item_.kind == Kind::kModel) return !is_model_broken_ && !item_.download_url.empty();
  return !is_collection_broken_ && HasSeen(Element::kContent);
}

}  // namespace stowra_bench
