// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_helpers.h"

#include "common_stowraapi/content/text_search.h"

namespace ovrant::stowraapiclient {

using ovrant::utils::ovrant_ustring;

namespace {

constexpr const char* kIdMarker = "mid=";
constexpr const char* kQuotedNameMarker = "filename=\"";
constexpr const char* kBareNameMarker = "filename=";

// The index after the first `marker`, or kAbsent.
int FindEndOf(const ovrant_ustring& text, const char* marker) {
  const int begin = FindText(text, marker, 0);
  return begin == kAbsent ? kAbsent : begin + Length(marker);
}

}  // namespace

ovrant_ustring GetStowraIdFromUrl(const ovrant_ustring& url) {
  const int marker = FindText(url, kIdMarker, 0);
  if (marker == kAbsent) return {};
  const int begin = marker + Length(kIdMarker);
  int end = FindText(url, "&", marker);
  if (end == kAbsent) end = Length(url);
  return url.Mid(begin, end - begin);
}

ovrant_ustring GetFilenameFromContentDisposition(const ovrant_ustring& header) {
  int begin = FindEndOf(header, kQuotedNameMarker);
  if (begin == kAbsent) begin = FindEndOf(header, kBareNameMarker);
  if (begin == kAbsent) return {};
  int end = FindText(header, ".qmf", 0);
  if (end == kAbsent) end = FindText(header, ".kmz", 0);
  if (end == kAbsent) return {};
  return header.Mid(begin, end - begin);
}

}  // namespace ovrant::stowraapiclient
