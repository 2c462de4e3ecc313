// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/header_text.h"

#include <algorithm>

namespace ovrant::internet {

namespace {

constexpr std::string_view kTokenSymbols = "!#$%&'*+-.^_`|~";

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Tabs are allowed in field values.
bool IsControl(char c) { return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F; }

bool IsTokenCharacter(char c) {
  return IsLetter(c) || (c >= '0' && c <= '9') || kTokenSymbols.find(c) != std::string_view::npos;
}

}  // namespace

bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), text.begin(),
                    [](char a, char b) { return ToLower(a) == ToLower(b); });
}

std::string ToLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), ToLower);
  return text;
}

bool IsHeaderName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), IsTokenCharacter);
}

bool IsHeaderValue(std::string_view value) {
  return std::none_of(value.begin(), value.end(), IsControl);
}

}  // namespace ovrant::internet
