// SPDX-License-Identifier: MIT
#include "host/wrap.h"

#include <fmt/format.h>

#include <algorithm>

namespace stowra {

namespace {

constexpr std::size_t kNarrowest = 10;

// The bytes at the begin of `text` that take at most `width` columns, but at least one character.
std::size_t BytesThatFit(std::string_view text, std::size_t width) {
  std::size_t columns = 0;
  std::size_t end = 0;
  while (end < text.size()) {
    std::size_t next = end + 1;
    while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0U) == 0x80U) ++next;
    columns += ColumnsOf(text.substr(end, next - end));
    if (end > 0 && columns > width) break;
    end = next;
  }
  return end;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

bool IsExample(const std::string& line) {
  return line.rfind("  stowra", 0) == 0 || line.rfind("    stowra", 0) == 0 ||
         line.rfind("  echo", 0) == 0;
}

// Splits at spaces outside quotation marks.
std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '\'') quoted = !quoted;
    if (c != ' ' || quoted) {
      words.back() += c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  return words;
}

std::string WrapExample(const std::string& line, std::size_t width) {
  constexpr std::size_t kEnd = 2;  // columns of the backslash and its space
  std::string text(line.find_first_not_of(' '), ' ');
  std::size_t columns = text.size();
  bool is_first = true;
  for (const std::string& word : SplitWords(line)) {
    const bool is_end = word == "\\";
    const bool breaks = !is_first && !is_end && columns + 1 + ColumnsOf(word) + kEnd > width;
    if (breaks) columns = 3;
    text += is_first ? "" : breaks ? " \\\n    " : " ";
    columns += ColumnsOf(word) + (is_first ? 0 : 1);
    text += word;
    is_first = false;
  }
  return text;
}

// Goes on at the description, or at its own indentation.
std::string WrapLine(const std::string& line, std::size_t width, std::size_t column) {
  const std::size_t own = line.find_first_not_of(' ');
  const bool has_description = own > 0 && line.size() > column && line[column] != ' ' &&
                               line.compare(column - 2, 2, "  ") == 0;
  const std::size_t indent = has_description ? column : own;
  const std::size_t room = std::max(width, indent + kNarrowest) - indent;
  std::string text;
  for (const std::string& part : WrapText(line.substr(indent), room)) {
    text += text.empty() ? line.substr(0, indent) : "\n" + std::string(indent, ' ');
    text += part;
  }
  return text;
}

}  // namespace

std::size_t ColumnsOf(std::string_view text) {
  // fmt counts columns only when it pads. A character never takes more columns than bytes.
  return 2 * text.size() - fmt::formatted_size("{:<{}}", text, text.size());
}

std::vector<std::string> WrapText(std::string_view text, std::size_t width) {
  if (ColumnsOf(text) <= width) return {std::string(text)};
  std::vector<std::string> lines(1);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const bool fits = ColumnsOf(lines.back()) + 1 + ColumnsOf(word) <= width;
    if (!lines.back().empty() && fits) lines.back() += ' ';
    if (!lines.back().empty() && !fits) lines.emplace_back();
    std::size_t bytes = fits ? word.size() : BytesThatFit(word, width);
    while (bytes < word.size()) {
      lines.back() = word.substr(0, bytes);
      lines.emplace_back();
      word.remove_prefix(bytes);
      bytes = BytesThatFit(word, width);
    }
    lines.back() += word;
  }
  return lines;
}

std::string JoinParagraphs(std::string_view text) {
  std::string joined;
  bool goes_on = false;
  for (const std::string& line : SplitLines(text)) {
    const bool is_prose = !line.empty() && line[0] != ' ';
    if (!joined.empty()) joined += is_prose && goes_on ? ' ' : '\n';
    joined += line;
    goes_on = is_prose && line.back() != ':';
  }
  return joined;
}

std::string WrapHelp(std::string_view help, std::size_t width, std::size_t column) {
  std::string text;
  for (const std::string& line : SplitLines(help)) {
    if (!text.empty()) text += '\n';
    const bool is_long = ColumnsOf(line) > width;
    text += !is_long          ? line
            : IsExample(line) ? WrapExample(line, width)
                              : WrapLine(line, width, column);
  }
  return text;
}

}  // namespace stowra
