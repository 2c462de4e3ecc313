// SPDX-License-Identifier: MIT
#include "emulator/http_fields.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace stowra_emulator {
namespace {

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r";
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Where the next line begins, or the end of the text.
std::size_t NextLine(std::string_view text, std::size_t position) {
  const std::size_t end = text.find('\n', position);
  return end == std::string_view::npos ? text.size() : end + 1;
}

}  // namespace

bool EqualNames(std::string_view first, std::string_view second) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [lower](char a, char b) { return lower(a) == lower(b); });
}

HttpFields ParseFields(std::string_view head) {
  HttpFields fields;
  for (std::size_t start = NextLine(head, 0); start < head.size(); start = NextLine(head, start)) {
    const std::string_view line = head.substr(start, NextLine(head, start) - start);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view value = line.substr(colon + 1, line.find('\n') - colon - 1);
    fields.emplace_back(line.substr(0, colon), Trim(value));
  }
  return fields;
}

std::string FieldValue(const HttpFields& fields, std::string_view name) {
  const auto found = std::find_if(fields.begin(), fields.end(), [name](const auto& field) {
    return EqualNames(field.first, name);
  });
  return found == fields.end() ? std::string() : found->second;
}

void HideField(std::string& head, std::string_view name) {
  for (std::size_t start = NextLine(head, 0); start < head.size(); start = NextLine(head, start)) {
    const std::size_t colon = head.find(':', start);
    if (colon == std::string::npos) return;
    if (EqualNames({head.data() + start, colon - start}, name)) {
      head.insert(start, kHidden);
    }
  }
}

bool IsConnectionField(std::string_view name) {
  constexpr std::array<std::string_view, 8> kNames = {
      "Connection", "Keep-Alive", "Proxy-Connection", "Transfer-Encoding",
      "TE",         "Trailer",    "Expect",           "Upgrade"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [name](std::string_view known) { return EqualNames(known, name); });
}

}  // namespace stowra_emulator
