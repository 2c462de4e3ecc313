// SPDX-License-Identifier: MIT
#include "host/error_message.h"

#include <algorithm>
#include <utility>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"
#include "host/html_text.h"
#include "host/response_headers.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr std::size_t kMaxCharacters = 200;
constexpr std::size_t kMaxBytes = 4 * kMaxCharacters;  // only invalid UTF-8 has more
constexpr std::string_view kBlanks = " \t\r\n";

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// The media type without its parameters, in lower case.
std::string MediaType(std::string_view content_type) {
  std::string type(content_type.substr(0, content_type.find_first_of("; \t")));
  std::transform(type.begin(), type.end(), type.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return type;
}

// Any byte of a UTF-8 character but its first.
bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// A run of white space becomes one space.
std::string Shorten(std::string_view text) {
  std::string line;
  std::size_t characters = 0;
  bool after_space = false;
  for (const char c : text) {
    if (kBlanks.find(c) != std::string_view::npos) {
      after_space = !line.empty();
      continue;
    }
    if (!IsContinuation(c)) characters += after_space ? 2 : 1;
    if (characters > kMaxCharacters || line.size() == kMaxBytes) return line + "...";
    if (std::exchange(after_space, false)) line += ' ';
    line += c;
  }
  return line;
}

std::string_view FirstLine(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_first_of("\r\n"));
}

// `Object` is a Document or a Value.
template <typename Object>
std::string MessageIn(const Object& object) {
  for (const char* name : {"message", "error", "detail", "title"}) {
    if (object.HasMember(name) && object[name].IsString()) return object[name].GetString().utf8();
  }
  return {};
}

// Unreadable JSON is shown as it is.
std::string JsonMessage(std::string_view body) {
  Document document;
  if (!document.Load(ovrant_ustring(body.data(), body.size()))) return std::string(body);
  std::string message = MessageIn(document);
  if (message.empty()) message = MessageIn(document["error"]);
  return message;
}

}  // namespace

std::string ErrorMessage(std::string_view content_type, std::string_view body) {
  const std::string type = MediaType(content_type);
  if (EndsWith(type, "json")) return Shorten(FirstLine(JsonMessage(body)));
  if (EndsWith(type, "html") || EndsWith(type, "xml")) return Shorten(HtmlMessage(body));
  const bool is_text = type.compare(0, 5, "text/") == 0;
  return is_text ? Shorten(FirstLine(body)) : std::string();
}

std::string ErrorMessage(const InternetData& transport) {
  return ErrorMessage(
      FindHeader(transport.received_headers(), "Content-Type").utf8(),
      {reinterpret_cast<const char*>(transport.received_data()), transport.received_data_length()});
}

}  // namespace stowra
