// SPDX-License-Identifier: MIT
// Search feeds as text, in parts that a test replaces or leaves out.

#ifndef TESTS_CONTENT_FEED_TEXT_H_
#define TESTS_CONTENT_FEED_TEXT_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common_stowraapi/content/content_query.h"
#include "tests/support/text.h"

namespace stowra_test {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;

inline constexpr char kSchema[] = "http://schemas.stowra.example/stowra/2008";
inline constexpr char kAtom[] = "application/atom+xml";

inline bool LoadText(std::string_view document, ContentQuery& query) {
  Bytes bytes(document);
  return query.Load(bytes.data(), bytes.length());
}

// Named pieces of text, in order.
class Parts {
 public:
  using List = std::vector<std::pair<std::string, std::string>>;

  Parts(std::string before, List parts, std::string after);

  // REQUIRES: there is a part of that name.
  Parts With(std::string_view name, std::string_view text) const;
  Parts Without(std::string_view name) const { return With(name, ""); }

  std::string text() const;

  // The names of all parts.
  std::vector<std::string> names() const;

 private:
  std::string before_;
  List parts_;
  std::string after_;
};

// An element that only holds a text.
std::string Tag(const std::string& name, std::string_view text);

// A feed without entries. Parts: title, links, total, start, per_page, entries.
Parts Feed();

// A feed of those entries.
std::string FeedOf(std::string_view entries);

// A model with the rendition "k2", and a collection. Parts: id, category, title, summary, link,
// content, author, flags, group.
Parts Model();
Parts Collection();

// The part "group": one thumbnail, and `contents`.
std::string Group(std::string_view contents);

// A rendition. `url` is escaped as in an attribute: "&amp;" for "&".
std::string Rendition(std::string_view url, std::string_view type = "application/vnd.brevix.qmf");

std::string Link(std::string_view rel, std::string_view href, std::string_view type);

}  // namespace stowra_test

#endif  // TESTS_CONTENT_FEED_TEXT_H_
