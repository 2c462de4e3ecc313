// SPDX-License-Identifier: MIT
#include "host/header_lines.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "host/file_access.h"

namespace stowra {

namespace {

// RFC 9110, 5.6.2.
bool IsTokenCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
         std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < ' ' && c != '\t') || byte == 0x7F;
}

std::string_view WithoutBlanksAround(std::string_view text) {
  constexpr std::string_view kHeaderBlanks = " \t";
  const std::size_t begin = text.find_first_not_of(kHeaderBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kHeaderBlanks) - begin + 1);
}

bool ReadHeaderFile(const std::string& file, std::vector<std::string>& lines, std::string& why) {
  std::string content;
  if (!(file == "-" ? ReadInput(content, why) : ReadFile(file, content, why))) {
    why = fmt::format("{}: {}", file, why);
    return false;
  }
  std::istringstream stream(content);
  std::string line;
  for (int number = 1; std::getline(stream, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    why = CheckHeaderLine(line);
    if (!why.empty()) {
      why = fmt::format("{}, line {}: {}", file, number, why);
      return false;
    }
    lines.push_back(line);
  }
  return true;
}

}  // namespace

std::string CheckHeaderLine(std::string_view line) {
  if (std::any_of(line.begin(), line.end(), IsControl)) {
    return "a header must not contain a line break or another control character";
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return "a header has the form \"Name: value\"";
  const std::string_view name = WithoutBlanksAround(line.substr(0, colon));
  const bool good = !name.empty() && std::all_of(name.begin(), name.end(), IsTokenCharacter);
  return good ? "" : fmt::format("'{}' cannot be the name of a header", name);
}

bool ReadHeaderLines(const std::string& text, std::vector<std::string>& lines, std::string& why) {
  if (!text.empty() && text[0] == '@') return ReadHeaderFile(text.substr(1), lines, why);
  why = CheckHeaderLine(text);
  if (why.empty()) lines.push_back(text);
  return why.empty();
}

}  // namespace stowra
