// SPDX-License-Identifier: MIT
#include "emulator/content/search_query.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "emulator/parameters.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

constexpr int kMaxCount = 100;
constexpr int kMaxNumber = std::numeric_limits<int>::max();

// Clients append their own `q` to addresses that may already have one.
std::string JoinedTexts(const httplib::Request& request) {
  std::string joined;
  for (std::size_t i = 0; i < request.get_param_value_count("q"); ++i) {
    const std::string text = request.get_param_value("q", i);
    if (!joined.empty() && !text.empty()) joined += ' ';
    joined += text;
  }
  return joined;
}

// Clients add these to find only models that they can open. All models can be downloaded here.
bool IsOperator(const std::string& word) {
  return word == "filetype:qmf" || word == "is:downloadable";
}

// Replaces wide spaces, which Asian keyboards type, with ordinary ones.
std::string WithPlainSpaces(std::string text) {
  constexpr std::string_view kWideSpace = "\u3000";
  for (std::size_t at = text.find(kWideSpace); at != std::string::npos;
       at = text.find(kWideSpace, at)) {
    text.replace(at, kWideSpace.size(), " ");
  }
  return text;
}

// Splits at spaces and control characters, and drops operators.
std::vector<std::string> Words(const std::string& raw_text) {
  const std::string text = WithPlainSpaces(raw_text);
  std::vector<std::string> words;
  auto start = text.begin();
  while (start != text.end()) {
    const auto end = std::find_if(start, text.end(), [](unsigned char c) { return c <= ' '; });
    const std::string word(start, end);
    if (!word.empty() && !IsOperator(word)) words.push_back(word);
    start = end == text.end() ? end : end + 1;
  }
  return words;
}

}  // namespace

SearchQuery ReadSearchQuery(const httplib::Request& request) {
  AllowParameters(request, {"q", "uq", "collection", "except", "start", "count"});
  SearchQuery query;
  query.text = JoinedTexts(request);
  query.author = TextParameter(request, "uq", "");
  query.collection = TextParameter(request, "collection", "");
  query.except = TextParameter(request, "except", "");
  query.start = NumberParameter(request, "start", query.start, 1, kMaxNumber);
  query.count = std::min(NumberParameter(request, "count", query.count, 1, kMaxNumber), kMaxCount);
  return query;
}

std::string MatchExpression(const std::string& text, const Tokenizer& tokenizer) {
  std::string expression;
  for (const std::string& word : Words(text)) {
    if (!tokenizer.FindsAnything(word)) continue;
    if (!expression.empty()) expression += ' ';
    expression += '"';
    for (const char c : word) expression += c == '"' ? "\"\"" : std::string(1, c);
    expression += '"';
  }
  return expression.empty() ? expression : expression + " *";
}

std::string SearchAddress(const std::string& path, const SearchQuery& query) {
  std::string address = path + "?";
  const auto add = [&address](const char* name, const std::string& value) {
    if (value.empty()) return;
    address += name + ("=" + PercentEncode(value, ":")) + "&";
  };
  add("q", query.text);
  add("uq", query.author);
  add("collection", query.collection);
  add("except", query.except);
  add("start", std::to_string(query.start));
  return address + "count=" + std::to_string(query.count);
}

bool HasNextPage(const SearchQuery& query, int total) {
  return query.start <= total && total - query.start >= query.count;
}

bool HasPreviousPage(const SearchQuery& query, int total) { return query.start > 1 && total > 0; }

SearchQuery NextPage(const SearchQuery& query) {
  SearchQuery next = query;
  next.start += query.count;
  return next;
}

SearchQuery PreviousPage(const SearchQuery& query, int total) {
  SearchQuery previous = query;
  // From beyond the end it leads back to the last results.
  const int reached = std::min(query.start - 1, total);
  previous.start = std::max(1, reached - query.count + 1);
  return previous;
}

}  // namespace stowra_emulator
