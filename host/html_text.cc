// SPDX-License-Identifier: MIT
#include "host/html_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace stowra {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kHtmlBlanks = " \t\r\n";

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The name in a tag such as "</Title class=x>": "/title".
std::string NameOf(std::string_view tag) {
  std::string name(tag.substr(1, tag.find_first_of(" \t\r\n>", 1) - 1));
  std::transform(name.begin(), name.end(), name.begin(), ToLower);
  return name;
}

// These do not end a line.
bool IsInline(std::string_view name) {
  constexpr std::array<std::string_view, 8> kInline = {"a",    "b",    "code",   "em",
                                                       "font", "span", "strong", "i"};
  if (!name.empty() && name[0] == '/') name.remove_prefix(1);
  return std::find(kInline.begin(), kInline.end(), name) != kInline.end();
}

std::string Unescape(std::string_view text) {
  constexpr std::array<std::pair<std::string_view, char>, 6> kReferences = {{{"&lt;", '<'},
                                                                             {"&gt;", '>'},
                                                                             {"&quot;", '"'},
                                                                             {"&#39;", '\''},
                                                                             {"&nbsp;", ' '},
                                                                             {"&amp;", '&'}}};
  std::string plain;
  while (!text.empty()) {
    const auto found =
        std::find_if(kReferences.begin(), kReferences.end(), [text](const auto& reference) {
          return text.substr(0, reference.first.size()) == reference.first;
        });
    const bool is_reference = found != kReferences.end();
    plain += is_reference ? found->second : text[0];
    text.remove_prefix(is_reference ? found->first.size() : 1);
  }
  return plain;
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(kHtmlBlanks) == kNone; }

// Splits markup into its texts.
class Scanner {
 public:
  explicit Scanner(std::string_view html) : rest_(html) {}

  // The next line of text, and whether it is the title. False at the end.
  bool Next(std::string& line, bool& is_title) {
    line.clear();
    while (!rest_.empty()) {
      const std::size_t begin = std::min(rest_.find('<'), rest_.size());
      line += rest_.substr(0, begin);
      rest_.remove_prefix(begin);
      is_title = in_title_;
      if (rest_.empty()) break;
      if (!SkipTag() && !IsBlank(line)) return true;
      if (IsBlank(line)) line.clear();
    }
    return !IsBlank(line);
  }

 private:
  // Skips what begins with '<'. Returns whether the line goes on after it.
  bool SkipTag() {
    const std::string name = NameOf(rest_);
    const bool is_comment = rest_.substr(0, 4) == "<!--";
    Skip(is_comment ? "-->" : ">");
    if (name == "script" || name == "style") Skip(fmt::format("</{}>", name));
    in_title_ = name == "title";
    return is_comment || IsInline(name);
  }

  void Skip(std::string_view end) {
    const std::size_t at = rest_.find(end);
    rest_.remove_prefix(at == kNone ? rest_.size() : at + end.size());
  }

  std::string_view rest_;
  bool in_title_ = false;
};

}  // namespace

std::string HtmlMessage(std::string_view html) {
  Scanner scanner(html);
  std::string first;
  std::string line;
  bool is_title = false;
  while (scanner.Next(line, is_title)) {
    if (is_title) return Unescape(line);
    if (first.empty()) first = line;
  }
  return Unescape(first);
}

}  // namespace stowra
