// SPDX-License-Identifier: MIT
#include "benchmarks/content/feed_text.h"

#include <charconv>

namespace stowra_bench {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::string_view Before(std::string_view text, char mark) {
  return text.substr(0, text.find(mark));
}

std::string_view After(std::string_view text, char mark) {
  const std::size_t found = text.find(mark);
  return found == kNone ? std::string_view() : text.substr(found + 1);
}

int HexValue(char digit) {
  int value = -1;
  std::from_chars(&digit, &digit + 1, value, 16);
  return value;
}

void Decode(std::string_view text, std::string& decoded) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool has_digits = text[i] == '%' && i + 2 < text.size();
    const int high = has_digits ? HexValue(text[i + 1]) : -1;
    const int low = has_digits ? HexValue(text[i + 2]) : -1;
    if (high >= 0 && low >= 0) {
      decoded += static_cast<char>(high << 4 | low);
      i += 2;
    } else {
      decoded += text[i] == '+' ? ' ' : text[i];
    }
  }
}

}  // namespace

void TrimInPlace(std::string& text) {
  constexpr const char* kWhiteSpace = " \t\r\n";
  text.erase(text.find_last_not_of(kWhiteSpace) + 1);
  text.erase(0, text.find_first_not_of(kWhiteSpace));
}

bool ToInt(std::string_view text, int& value) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end) return false;
  value = number;
  return true;
}

bool IsTrue(std::string_view text) { return text == "true" || text == "1"; }

void RemoveSearchOperators(std::string& title) {
  for (const std::string_view search_operator :
       {" filetype:qmf", " is:downloadable", "filetype:qmf", "is:downloadable"}) {
    std::size_t found = 0;
    while ((found = title.find(search_operator, found)) != kNone) {
      title.erase(found, search_operator.size());
    }
  }
}

std::string_view FindAuthorId(std::string_view uri) {
  constexpr std::string_view kMarker = "uq=";
  const std::size_t marker = uri.find(kMarker);
  return marker == kNone ? std::string_view() : Before(uri.substr(marker + kMarker.size()), '&');
}

std::optional<std::string_view> FindParameter(std::string_view url, std::string_view name,
                                              std::string& decoded) {
  for (std::string_view rest = After(Before(url, '#'), '?'); !rest.empty();
       rest = After(rest, '&')) {
    const std::string_view parameter = Before(rest, '&');
    if (parameter.empty() || Before(parameter, '=') != name) continue;
    const std::string_view value = After(parameter, '=');
    if (value.find_first_of("%+") == kNone) return value;
    Decode(value, decoded);
    return decoded;
  }
  return std::nullopt;
}

int QmfVersion(std::string_view rendition) {
  constexpr int kVersionOfBareMark = 5;
  if (rendition.empty() || rendition[0] != 's') return 0;
  const std::string_view digits = rendition.substr(1);
  if (digits.empty()) return kVersionOfBareMark;
  if (digits.find_first_not_of("0123456789") != kNone) return 0;
  int version = 0;
  ToInt(digits, version);
  return version;
}

}  // namespace stowra_bench
