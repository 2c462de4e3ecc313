// SPDX-License-Identifier: MIT
// Builds a feed from parser events. Shared by the peers' event parsers and tree walks.

#ifndef BENCHMARKS_CONTENT_FEED_BUILDER_H_
#define BENCHMARKS_CONTENT_FEED_BUILDER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

inline constexpr const char* kAtomNamespace = "http://www.w3.org/2005/Atom";
inline constexpr const char* kOpenSearchNamespace = "http://a9.com/-/spec/opensearchrss/1.0/";
inline constexpr const char* kMediaNamespace = "http://search.yahoo.com/mrss/";
inline constexpr const char* kSchemaNamespace = "http://schemas.stowra.example/stowra/2008";

enum class Element {
  kOther,
  kFeed,
  kEntry,
  kId,
  kTitle,
  kSummary,
  kCategory,
  kLink,
  kContent,
  kAuthor,
  kName,
  kUri,
  kTotalResults,
  kStartIndex,
  kItemsPerPage,
  kGroup,
  kThumbnail,
  kMediaContent,
  kDynamicComponent,
  kClassifiedComponent,
};

struct ElementName {
  const char* uri;
  const char* local_name;
  Element element;
};

// The most frequent elements come first.
inline constexpr ElementName kElementNames[] = {
    {kMediaNamespace, "content", Element::kMediaContent},
    {kAtomNamespace, "link", Element::kLink},
    {kMediaNamespace, "thumbnail", Element::kThumbnail},
    {kMediaNamespace, "group", Element::kGroup},
    {kAtomNamespace, "entry", Element::kEntry},
    {kAtomNamespace, "id", Element::kId},
    {kAtomNamespace, "category", Element::kCategory},
    {kAtomNamespace, "title", Element::kTitle},
    {kAtomNamespace, "summary", Element::kSummary},
    {kAtomNamespace, "author", Element::kAuthor},
    {kAtomNamespace, "name", Element::kName},
    {kAtomNamespace, "uri", Element::kUri},
    {kAtomNamespace, "content", Element::kContent},
    {kSchemaNamespace, "dynamicComponent", Element::kDynamicComponent},
    {kSchemaNamespace, "classifiedComponent", Element::kClassifiedComponent},
    {kAtomNamespace, "feed", Element::kFeed},
    {kOpenSearchNamespace, "totalResults", Element::kTotalResults},
    {kOpenSearchNamespace, "startIndex", Element::kStartIndex},
    {kOpenSearchNamespace, "itemsPerPage", Element::kItemsPerPage},
};

// The attributes that the builder reads. The views are valid only during the event.
struct Attributes {
  std::optional<std::string_view> rel;
  std::optional<std::string_view> href;
  std::optional<std::string_view> type;
  std::optional<std::string_view> term;
  std::optional<std::string_view> src;
  std::optional<std::string_view> url;

  // Keeps an attribute without a prefix if it is one of these.
  void Set(std::string_view name, std::string_view value);
};

// Whether the builder reads this element's attributes.
bool HasAttributes(Element element);

// Fills a feed from the events of one document.
class FeedBuilder {
 public:
  FeedBuilder(int max_qmf_version, StdFeed& feed);

  void Start(Element element, const Attributes& attributes);
  void Characters(std::string_view text);
  void End();

  // Whether the document had a feed with all required elements.
  bool complete() const;

 private:
  enum class Place { kDocument, kFeed, kEntry, kAuthor, kGroup };

  void StartInFeed(Element element, const Attributes& attributes);
  void StartInEntry(Element element, const Attributes& attributes);
  void StartInAuthor(Element element);
  void StartInGroup(Element element, const Attributes& attributes);
  void Enter(Place place);
  void Ignore();
  bool IsFirst(Element element);
  bool HasSeen(Element element) const;
  void ReadText(Element element, std::string& text);
  void EndText();
  void TakeFeedLink(const Attributes& attributes);
  void TakeLink(const Attributes& attributes);
  void TakeContent(const Attributes& attributes);
  void TakeThumbnail(const Attributes& attributes);
  void TakeRendition(const Attributes& attributes);
  void StartEntry();
  void EndEntry();
  bool IsItemComplete() const;

  const int max_qmf_version_;
  StdFeed& feed_;
  StdFeedItem item_;
  Place place_ = Place::kDocument;
  int ignored_ = 0;              // open elements that are skipped
  std::string* text_ = nullptr;  // receives the open element's text, if it is read
  Element text_element_ = Element::kOther;
  int text_depth_ = 0;  // elements inside that one
  std::string value_;   // the text of a number or a boolean
  std::uint32_t seen_in_feed_ = 0;
  std::uint32_t seen_in_entry_ = 0;
  int counts_ = 0;
  bool has_feed_ = false;
  bool is_broken_ = false;             // the entry is unusable
  bool is_collection_broken_ = false;  // the entry is unusable as a collection
  bool is_model_broken_ = false;       // the entry is unusable as a model
  int best_version_ = 0;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_FEED_BUILDER_H_
