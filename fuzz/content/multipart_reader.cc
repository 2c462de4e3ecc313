// SPDX-License-Identifier: MIT
#include "fuzz/content/multipart_reader.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace stowra_fuzz {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kBlanks = " \t";

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

class Reader {
 public:
  Reader(std::string_view body, const std::string& boundary)
      : rest_(body), line_("--" + boundary), delimiter_(std::string(kLineEnd) + line_) {}

  std::optional<std::vector<FormPart>> Read() {
    if (!SkipPreamble()) return std::nullopt;
    std::vector<FormPart> parts;
    while (!TakePrefix("--")) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
      if (!TakePrefix(kLineEnd)) return std::nullopt;
      FormPart part;
      if (!ReadHeaders(part) || !ReadContent(part)) return std::nullopt;
      parts.push_back(std::move(part));
    }
    return parts;
  }

 private:
  bool TakePrefix(std::string_view prefix) {
    if (rest_.substr(0, prefix.size()) != prefix) return false;
    rest_.remove_prefix(prefix.size());
    return true;
  }

  bool SkipPreamble() {
    if (TakePrefix(line_)) return true;
    const std::size_t begin = rest_.find(delimiter_);
    if (begin == std::string_view::npos) return false;
    rest_.remove_prefix(begin + delimiter_.size());
    return true;
  }

  bool ReadHeaders(FormPart& part) {
    bool has_name = false;
    while (!TakePrefix(kLineEnd)) {
      const std::size_t end = rest_.find(kLineEnd);
      const std::size_t colon = rest_.find(':');
      if (end == std::string_view::npos || colon == std::string_view::npos || colon > end) {
        return false;
      }
      const std::string header = Lower(rest_.substr(0, colon));
      const std::string_view value = Trim(rest_.substr(colon + 1, end - colon - 1));
      rest_.remove_prefix(end + kLineEnd.size());
      if (header == "content-type") part.type = value;
      if (header == "content-disposition") has_name = ReadDisposition(value, part);
    }
    return has_name;
  }

  // form-data; name="..."; filename="..."
  static bool ReadDisposition(std::string_view value, FormPart& part) {
    const std::size_t kind_end = std::min(value.find(';'), value.size());
    if (Lower(Trim(value.substr(0, kind_end))) != "form-data") return false;
    value.remove_prefix(kind_end);
    bool has_name = false;
    while (!value.empty()) {
      if (value.front() != ';') return false;
      value = Trim(value.substr(1));
      const std::size_t equals = value.find("=\"");
      if (equals == std::string_view::npos) return false;
      const std::size_t close = value.find('"', equals + 2);
      if (close == std::string_view::npos) return false;
      const std::string name = Lower(value.substr(0, equals));
      const std::string text(value.substr(equals + 2, close - equals - 2));
      if (name == "name") {
        part.name = text;
        has_name = true;
      } else if (name == "filename") {
        part.file_name = text;
      }
      value = Trim(value.substr(close + 1));
    }
    return has_name;
  }

  bool ReadContent(FormPart& part) {
    const std::size_t end = rest_.find(delimiter_);
    if (end == std::string_view::npos) return false;
    part.content = rest_.substr(0, end);
    rest_.remove_prefix(end + delimiter_.size());
    return true;
  }

  std::string_view rest_;
  const std::string line_;
  const std::string delimiter_;
};

}  // namespace

bool operator==(const FormPart& a, const FormPart& b) {
  return a.name == b.name && a.file_name == b.file_name && a.type == b.type &&
         a.content == b.content;
}

std::optional<std::vector<FormPart>> ReadMultipart(std::string_view body,
                                                   const std::string& boundary) {
  return Reader(body, boundary).Read();
}

bool IsBoundary(std::string_view text) {
  constexpr std::size_t kLongest = 70;
  if (text.empty() || text.size() > kLongest || text.back() == ' ') return false;
  return std::all_of(text.begin(), text.end(), [](unsigned char c) {
    return c < 0x80 &&
           (std::isalnum(c) != 0 ||
            std::string_view("'()+_,-./:=? ").find(static_cast<char>(c)) != std::string_view::npos);
  });
}

}  // namespace stowra_fuzz
