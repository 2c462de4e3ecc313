// SPDX-License-Identifier: MIT
#include "emulator/markup_writer.h"

#include "emulator/utf8.h"

namespace stowra_emulator {
namespace {

// See https://www.w3.org/TR/xml/#NT-Char. DecodeUtf8 returns no surrogates.
bool IsAllowed(char32_t c) {
  return (c >= 0x20 && c != 0xFFFE && c != 0xFFFF) || c == '\t' || c == '\n' || c == '\r';
}

void AppendEscaped(std::string& out, char32_t c, std::string_view bytes) {
  switch (c) {
    case '&':
      out += "&amp;";
      break;
    case '<':
      out += "&lt;";
      break;
    case '>':
      out += "&gt;";
      break;
    case '"':
      out += "&quot;";
      break;
    // An XML parser would turn these into a space or a line feed.
    case '\t':
      out += "&#9;";
      break;
    case '\n':
      out += "&#10;";
      break;
    case '\r':
      out += "&#13;";
      break;
    default:
      out += bytes;
  }
}

}  // namespace

std::string EscapeMarkup(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter next = DecodeUtf8(text);
    if (!next.is_valid) {
      escaped += "\xEF\xBF\xBD";
    } else if (IsAllowed(next.code_point)) {
      AppendEscaped(escaped, next.code_point, text.substr(0, next.size));
    }
    text.remove_prefix(next.size);
  }
  return escaped;
}

void MarkupWriter::Begin(const char* name, Attributes attributes) {
  StartTag(name, attributes);
  text_ += '>';
  open_.push_back({name});
}

void MarkupWriter::End() {
  const OpenElement element = open_.back();
  open_.pop_back();
  if (element.has_elements && !element.has_text) NewLine();
  text_ += std::string("</") + element.name + '>';
}

void MarkupWriter::Text(std::string_view text) { Verbatim(EscapeMarkup(text)); }

void MarkupWriter::Verbatim(std::string_view text) {
  open_.back().has_text = true;
  text_ += text;
}

void MarkupWriter::Element(const char* name, std::string_view text, Attributes attributes) {
  Begin(name, attributes);
  Text(text);
  End();
}

void MarkupWriter::Empty(const char* name, Attributes attributes) {
  StartTag(name, attributes);
  text_ += "/>";
}

std::string MarkupWriter::Finish() {
  while (!open_.empty()) End();
  text_ += '\n';
  return std::move(text_);
}

void MarkupWriter::StartTag(const char* name, Attributes attributes) {
  if (open_.empty() || !open_.back().has_text) NewLine();
  if (!open_.empty()) open_.back().has_elements = true;
  text_ += std::string("<") + name;
  for (const auto& [key, value] : attributes) {
    text_ += ' ' + std::string(key) + "=\"" + EscapeMarkup(value) + '"';
  }
}

void MarkupWriter::NewLine() { text_ += '\n' + std::string(2 * open_.size(), ' '); }

}  // namespace stowra_emulator
