// SPDX-License-Identifier: MIT
// stowra search: finds models and collections.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/item_values.h"
#include "host/commands.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/search_pages.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::stowraapiclient::ContentItem;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kSearchExamples[] =
    "Examples:\n"
    "  stowra search 'http://127.0.0.1:8080/search?q=chair'\n"
    "  stowra search 'http://127.0.0.1:8080/search?q=chair' --all --max-qmf-version 8\n"
    "  stowra search 'http://127.0.0.1:8080/search?q=chair' --json\n"
    "  stowra search oak chair --url-base http://127.0.0.1:8080\n";

struct SearchOptions : RequestOptions {
  bool all = false;
  int max_qmf_version = 0;
};

const char* KindOf(const ContentItem& item) {
  return item.kind_ == ovrant::stowraapiclient::kModel ? "model" : "collection";
}

const char* FormatOf(const ContentItem& item) {
  switch (item.download_format_) {
    case ovrant::stowraapiclient::kK2Download:
      return "k2";
    case ovrant::stowraapiclient::kQmfDownload:
      return "qmf";
    default:
      return "";
  }
}

std::string ToTable(const SearchPages& pages) {
  const bool coloured = MayColour(stdout);
  Table search(Table::Labels::kFirstColumn);
  search.AddRow({"title", pages.first().title_.utf8()});
  search.AddRow({"found", pages.CountText()});
  if (pages.items().empty()) return search.ToText(coloured);

  Table results(Table::Labels::kFirstRow);
  results.AddRow({"title", "author", "kind", "format", "download"});
  for (const ContentItem* item : pages.items()) {
    results.AddRow({item->title_.utf8(), item->author_name_.utf8(), KindOf(*item), FormatOf(*item),
                    item->download_url_.utf8()});
  }
  return search.ToText(coloured) + "\n" + results.ToText(coloured);
}

Value MakeItem(Document& document, const ContentItem& item) {
  const struct {
    const char* name;
    ovrant_ustring text;
  } texts[] = {
      {"id", item.id_},
      {"title", item.title_},
      {"summary", item.summary_},
      {"author_name", item.author_name_},
      {"author_uri", item.author_uri_},
      {"author_id", item.author_id_},
      {"html_url", item.html_url_},
      {"user_query_url", item.user_query_url_},
      {"thumbnail_url", item.thumbnail_url_},
      {"download_url", item.download_url_},
      {"download_format", FormatOf(item)},
      {"collection_feed_url", item.collection_feed_url_},
  };
  Value value = MakeObject(document);
  value.AddMember("kind", MakeText(document, KindOf(item)));
  for (const auto& [name, text] : texts) value.AddMember(name, MakeText(document, text));
  value.AddMember("dynamic_component", MakeBool(document, item.dynamic_component_));
  value.AddMember("classified_component", MakeBool(document, item.classified_component_));
  return value;
}

std::string ToJson(const SearchPages& pages) {
  Document document;
  document.AddMember("title", MakeText(document, pages.first().title_));
  document.AddMember("total_results", MakeInt(document, pages.first().total_results_));
  document.AddMember("start_index", MakeInt(document, pages.first().start_index_));
  document.AddMember("items_per_page", MakeInt(document, pages.first().items_per_page_));
  document.AddMember("self_url", MakeText(document, pages.first().self_url_));
  document.AddMember("previous_url", MakeText(document, pages.first().previous_url_));
  document.AddMember("next_url", MakeText(document, pages.last().next_url_));
  document.AddMember("html_url", MakeText(document, pages.first().html_url_));
  Value items = MakeArray(document);
  for (const ContentItem* item : pages.items()) items.PushBack(MakeItem(document, *item));
  document.AddMember("items", items);
  return ToLine(document);
}

ExitStatus RunSearch(const SearchOptions& options) {
  const Session session(options);
  SearchPages pages(session, options.max_qmf_version);
  if (!pages.Add(ovrant_ustring(options.url.data(), options.url.size()))) return pages.Fail();
  const bool are_all_here = !options.all || pages.AddFollowing();
  const ExitStatus written = WriteResult(options.json ? ToJson(pages) : ToTable(pages));
  return are_all_here ? written : pages.Fail();
}

}  // namespace

void AddSearchCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<SearchOptions>();
  CLI::App& command = *app.add_subcommand("search", "Find models and collections");
  command.footer(kSearchExamples);
  AddWaitingOptions(command, *options, "URL", "URL of a search, or with --url-base words to find");
  command.add_option("WORDS", options->words, "More words to find")->option_text(" ");
  command.add_flag(
      "--all", options->all,
      "Fetch the following pages, too; if one fails, print those before it and exit with "
      "the failure's status");
  AddMaxQmfVersion(command, options->max_qmf_version,
                   "Accept .qmf files up to this version (default: only .kmz files)");
  command.callback([options, &chosen] { chosen = [options] { return RunSearch(*options); }; });
}

}  // namespace stowra
