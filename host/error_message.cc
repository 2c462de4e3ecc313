// SPDX-License-Identifier: MIT
#include "host/error_message.h"

#include <algorithm>
#include <utility>

#include "host/printable.h"
#include "host/response_headers.h"

namespace stowra {

using ovrant::internet::InternetData;

namespace {

constexpr std::size_t kMaxCharacters = 200;
constexpr std::size_t kMaxBytes = 4 * kMaxCharacters;  // only invalid UTF-8 has more
constexpr std::string_view kBlanks = " \t\r\n";

bool IsSpace(char c) { return kBlanks.find(c) != std::string_view::npos; }

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool IsText(std::string_view content_type) {
  std::string type(content_type.substr(0, content_type.find_first_of("; \t")));
  std::transform(type.begin(), type.end(), type.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return type.compare(0, 5, "text/") == 0 || EndsWith(type, "json") || EndsWith(type, "xml");
}

// Any byte of a UTF-8 character but its first.
bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

}  // namespace

std::string ErrorMessage(std::string_view content_type, std::string_view body) {
  if (!IsText(content_type)) return {};
  std::string line;
  std::size_t characters = 0;
  bool after_space = false;
  for (const char c : body) {
    if (IsSpace(c)) {
      after_space = !line.empty();
      continue;
    }
    if (!IsContinuation(c)) characters += after_space ? 2 : 1;
    if (characters > kMaxCharacters || line.size() == kMaxBytes) return Printable(line) + "...";
    if (std::exchange(after_space, false)) line += ' ';
    line += c;
  }
  return Printable(line);
}

std::string ErrorMessage(const InternetData& transport) {
  return ErrorMessage(
      FindHeader(transport.received_headers(), "Content-Type").utf8(),
      {reinterpret_cast<const char*>(transport.received_data()), transport.received_data_length()});
}

}  // namespace stowra
