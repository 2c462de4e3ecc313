// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/xml/values.h"

#include <charconv>

namespace ovrant::xml {
namespace {

bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<int> ToInt(std::string_view text) {
  // The sign that std::from_chars does not read.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  int value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

std::optional<bool> ToBool(std::string_view text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  return std::nullopt;
}

}  // namespace ovrant::xml
