// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/feed_names.h"

#include "common_stowraapi/content/content_schema.h"

namespace ovrant::stowraapiclient {

using ovrant::utils::ovrant_ustring;

namespace {

ovrant_ustring Atom(const char* name) {
  return ovrant_ustring("http://www.w3.org/2005/Atom:") + name;
}

ovrant_ustring OpenSearch(const char* name) {
  return ovrant_ustring("http://a9.com/-/spec/opensearchrss/1.0/:") + name;
}

ovrant_ustring Media(const char* name) {
  return ovrant_ustring("http://search.yahoo.com/mrss/:") + name;
}

ovrant_ustring Schema(const char* name_or_fragment) {
  return ovrant_ustring(kContentSchemaNamespace) + name_or_fragment;
}

}  // namespace

const FeedNames& FeedNames::Get() {
  static const FeedNames* const names = new FeedNames;
  return *names;
}

FeedNames::FeedNames()
    : feed(Atom("feed")),
      entry(Atom("entry")),
      id(Atom("id")),
      title(Atom("title")),
      summary(Atom("summary")),
      category(Atom("category")),
      link(Atom("link")),
      content(Atom("content")),
      author(Atom("author")),
      author_name(Atom("name")),
      author_uri(Atom("uri")),
      total_results(OpenSearch("totalResults")),
      start_index(OpenSearch("startIndex")),
      items_per_page(OpenSearch("itemsPerPage")),
      media_group(Media("group")),
      media_thumbnail(Media("thumbnail")),
      media_content(Media("content")),
      dynamic_component(Schema(":dynamicComponent")),
      classified_component(Schema(":classifiedComponent")),
      rel("rel"),
      href("href"),
      type("type"),
      term("term"),
      src("src"),
      url("url"),
      rendition("rtyp"),
      k2_rendition("k2"),
      small_thumbnail("rtyp=st"),
      author_parameter("uq="),
      parameter_end("&"),
      model(Schema("#model")),
      self("self"),
      next("next"),
      previous("previous"),
      alternate("alternate"),
      user_query(Schema("#user.query")),
      atom_type("application/atom+xml"),
      html_type("text/html"),
      qmf_type("application/vnd.brevix.qmf"),
      kmz_type("application/vnd.pellamy.kmz") {}

}  // namespace ovrant::stowraapiclient
