// SPDX-License-Identifier: MIT
// Ids, file names and versions out of texts, beside second readings. Input: the text.

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "common_stowraapi/content/content_helpers.h"
#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/platform/ustring.h"
#include "fuzz/support/check.h"

namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::GetFilenameFromContentDisposition;
using ovrant::stowraapiclient::GetStowraIdFromUrl;
using ovrant::utils::ovrant_ustring;

constexpr std::size_t kNone = std::string::npos;

// From the first "mid=" to the "&" behind it or the end.
std::string FindId(const std::string& url) {
  const std::size_t mark = url.find("mid=");
  if (mark == kNone) return {};
  std::string id;
  for (std::size_t i = mark + 4; i < url.size() && url[i] != '&'; ++i) id += url[i];
  return id;
}

// From behind the mark to the extension, both the first of all; the extension may come first.
std::string FindFileName(const std::string& header) {
  const std::string quoted = "filename=\"";
  const std::string bare = "filename=";
  std::size_t begin = header.find(quoted);
  if (begin != kNone) {
    begin += quoted.size();
  } else {
    begin = header.find(bare);
    if (begin == kNone) return {};
    begin += bare.size();
  }
  std::size_t end = header.find(".qmf");
  if (end == kNone) end = header.find(".kmz");
  if (end == kNone || end < begin) return {};
  return header.substr(begin, end - begin);
}

// "s" and digits; 5 for "s" alone, 0 where the number does not fit. False for anything else.
bool ReadVersion(const std::string& value, int& version) {
  if (value.empty() || value[0] != 's') return false;
  const std::string digits = value.substr(1);
  for (const char c : digits) {
    if (c < '0' || c > '9') return false;
  }
  if (digits.empty()) {
    version = 5;
    return true;
  }
  version = 0;
  const std::size_t first = digits.find_first_not_of('0');
  const std::size_t kMostDigits = 10;
  if (first == kNone || digits.size() - first > kMostDigits) return true;
  const long long number = std::stoll(digits.substr(first));
  if (number <= std::numeric_limits<int>::max()) version = static_cast<int>(number);
  return true;
}

void CheckVersion(const ovrant_ustring& value) {
  constexpr int kUntouched = -7;
  ContentItem item;
  int version = kUntouched;
  int expected = kUntouched;
  FUZZ_CHECK(item.ExtractQmfVersionFromRTypValue(value, version) ==
             ReadVersion(value.utf8(), expected));
  FUZZ_CHECK(version == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ovrant_ustring text(reinterpret_cast<const char*>(data), static_cast<unsigned long>(size));
  const std::string utf8 = text.utf8();
  FUZZ_CHECK(GetStowraIdFromUrl(text).utf8() == FindId(utf8));
  FUZZ_CHECK(GetFilenameFromContentDisposition(text).utf8() == FindFileName(utf8));
  CheckVersion(text);

  // The same text as a version, so that not every one fails at its first character.
  ovrant_ustring marked("s");
  marked += text;
  CheckVersion(marked);
  return 0;
}
