// SPDX-License-Identifier: MIT
#include "host/check/feed_check.h"

#include <fmt/format.h>

#include "common_stowraapi/content/content_query.h"
#include "host/check/entry_check.h"
#include "host/check/feed_vocabulary.h"
#include "host/check/xml_document.h"

namespace stowra {

using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kOpenSearch[] = "http://a9.com/-/spec/opensearchrss/1.0/:";

void CheckTitle(WatchedXml& reader, CheckReport& report) {
  ovrant_ustring title;
  if (!reader.GetElementText(kAtomTitle, title)) {
    report.findings.push_back({"the feed has no title"});
  }
}

void CheckCounts(WatchedXml& reader, CheckReport& report) {
  for (const char* name : {"totalResults", "startIndex", "itemsPerPage"}) {
    int count = 0;
    reader.TakeLookups();
    if (reader.GetElementInt(ovrant_ustring(kOpenSearch) + name, count)) continue;
    const std::string text = reader.TakeLookups().back().value;
    report.findings.push_back(
        {text.empty() ? fmt::format("the feed has no {} in the namespace of OpenSearch 1.0", name)
                      : fmt::format("{} is '{}', which is no 32-bit number", name, text)});
  }
}

// Links that miss an attribute are ignored.
void CheckLink(WatchedXml& reader, int number, CheckReport& report) {
  ovrant_ustring value;
  for (const char* name : {"rel", "href", "type"}) {
    if (reader.GetAttribute(name, value)) continue;
    report.findings.push_back({fmt::format("link {} of the feed has no {}", number, name), false});
    return;
  }
}

template <typename Visit>
void ForEach(WatchedXml& reader, const char* name, const Visit& visit) {
  if (!reader.FindElement(name)) return;
  int number = 1;
  do {
    visit(number++);
  } while (reader.NextElement(name));
  reader.LeaveElement(name);
}

void AddValues(const ContentQuery& query, CheckReport& report) {
  report.values = {{"title", query.title_.utf8()},
                   {"total_results", std::to_string(query.total_results_)},
                   {"start_index", std::to_string(query.start_index_)},
                   {"items_per_page", std::to_string(query.items_per_page_)},
                   {"self_url", query.self_url_.utf8()},
                   {"next_url", query.next_url_.utf8()},
                   {"previous_url", query.previous_url_.utf8()},
                   {"html_url", query.html_url_.utf8()}};
}

}  // namespace

CheckReport CheckFeed(std::string document, int max_qmf_version) {
  CheckReport report;
  report.kind = "feed";
  const auto reader = WatchDocument(document);
  if (reader == nullptr) {
    report.findings.push_back({kNotOpened});
  } else if (!reader->FindElement(kAtomFeed)) {
    report.findings.push_back({"its root is not the element feed of Atom"});
  } else {
    CheckTitle(*reader, report);
    ForEach(*reader, kAtomLink, [&](int number) { CheckLink(*reader, number, report); });
    CheckCounts(*reader, report);
    ForEach(*reader, kAtomEntry, [&](int number) {
      report.parts.push_back(CheckEntry(*reader, number, max_qmf_version));
    });
  }
  ContentQuery query;
  query.max_qmf_version_ = max_qmf_version;
  report.is_usable =
      reader != nullptr && query.Load(reinterpret_cast<unsigned char*>(document.data()),
                                      static_cast<int>(document.size()));
  if (report.is_usable) AddValues(query, report);
  // A feed takes its entries with it.
  for (CheckedPart& part : report.parts) part.is_kept = part.is_kept && report.is_usable;
  return report;
}

CheckReport CheckEntryDocument(const std::string& document, int max_qmf_version) {
  CheckReport report;
  report.kind = "entry";
  const auto reader = WatchDocument(document);
  if (reader == nullptr) {
    report.findings.push_back({kNotOpened});
  } else if (!reader->FindElement(kAtomEntry)) {
    report.findings.push_back({"its root is not the element entry of Atom"});
  } else {
    report.parts.push_back(CheckEntry(*reader, 1, max_qmf_version));
    report.is_usable = report.parts[0].is_kept;
  }
  return report;
}

}  // namespace stowra
