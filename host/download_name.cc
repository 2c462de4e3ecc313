// SPDX-License-Identifier: MIT
#include "host/download_name.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "common_stowraapi/content/content_helpers.h"
#include "host/printable.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kFallback[] = "download";
constexpr char kWhiteSpace[] = " \t";

constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN",    "AUX",
                                                      "NUL", "CONIN$", "CONOUT$"};

// Bytes; the limit of common file systems.
constexpr std::size_t kLongestName = 255;

char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool IsPortNumber(std::string_view text) {
  const bool is_digit = text.size() == 1 && text[0] >= '0' && text[0] <= '9';
  return is_digit || text == "\u00B9" || text == "\u00B2" || text == "\u00B3";
}

// Drops folders, hidden characters, and dots and blanks at the end, which some systems ignore.
std::string Clean(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  std::string name =
      WithoutHidden(separator == std::string_view::npos ? path : path.substr(separator + 1));
  name.erase(name.find_last_not_of(". ") + 1);
  return name;
}

// Whether some system takes the name, with any extension, for a device.
bool IsDevice(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::transform(stem.begin(), stem.end(), stem.begin(), ToUpper);
  const std::string_view whole = stem;
  const std::string_view port = whole.substr(0, 3);
  if (port == "COM" || port == "LPT") return IsPortNumber(whole.substr(3));
  return std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end();
}

// The library looks for an extension even behind the closing quotation mark.
bool IsFit(const std::string& name) {
  return !name.empty() && name.size() <= kLongestName && name[0] != '.' && name[0] != '-' &&
         name.find('"') == std::string::npos && !IsDevice(name);
}

// The library cuts a name before .qmf or .kmz. Returns what it cuts off, such as ".qmf.zip".
std::string ExtensionIn(const std::string& header) {
  const std::size_t qmf = header.find(".qmf");
  const std::size_t begin = qmf != std::string::npos ? qmf : header.find(".kmz");
  const bool quoted = header.find("filename=\"") != std::string::npos;
  return header.substr(begin, header.find_first_of(quoted ? "\"" : "; \t", begin) - begin);
}

// The name of a .qmf or .kmz file, as the library reads it. Empty without one.
std::string ModelNameIn(const ovrant_ustring& header) {
  const std::string base =
      ovrant::stowraapiclient::GetFilenameFromContentDisposition(header).utf8();
  if (base.empty()) return {};
  const std::string name = Clean(base + ExtensionIn(header.utf8()));
  return IsFit(name) ? name : std::string();
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kWhiteSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

bool IsFilename(std::string_view parameter) {
  constexpr std::string_view kName = "filename";
  return std::equal(parameter.begin(), parameter.end(), kName.begin(), kName.end(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// The header up to its first semicolon outside quotation marks.
std::string_view FirstParameter(std::string_view header) {
  bool quoted = false;
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (header[i] == '"') quoted = !quoted;
    if (header[i] == ';' && !quoted) return header.substr(0, i);
    if (header[i] == '\\' && quoted) ++i;
  }
  return header;
}

// Keeps backslashes. They separate folders more often than they escape a character.
std::string ValueOf(std::string_view text) {
  if (text.empty() || text[0] != '"') {
    return std::string(text.substr(0, text.find_first_of(kWhiteSpace)));
  }
  text.remove_prefix(1);
  return std::string(text.substr(0, text.rfind('"')));
}

// The parameter "filename", for files of any type. Empty without it.
std::string AnyNameIn(const std::string& header) {
  std::string_view rest = header;
  while (!rest.empty()) {
    const std::string_view parameter = FirstParameter(rest);
    const std::size_t equals = parameter.find('=');
    if (equals != std::string_view::npos && IsFilename(Trim(parameter.substr(0, equals)))) {
      const std::string name = Clean(ValueOf(Trim(parameter.substr(equals + 1))));
      return IsFit(name) ? name : std::string();
    }
    rest.remove_prefix(std::min(parameter.size() + 1, rest.size()));
  }
  return {};
}

std::string NameInUrl(const std::string& url) {
  const std::string_view path(url.data(), std::min(url.find_first_of("?#"), url.size()));
  const std::size_t host = path.find("://");
  if (host == std::string_view::npos) return {};
  const std::size_t begin = path.find('/', host + 3);
  if (begin == std::string_view::npos) return {};
  const std::string name = Clean(path.substr(begin));
  return IsFit(name) ? name : std::string();
}

}  // namespace

std::string ChooseFileName(const ovrant_ustring& content_disposition, const std::string& url) {
  std::string name = ModelNameIn(content_disposition);
  if (name.empty()) name = AnyNameIn(content_disposition.utf8());
  if (name.empty()) name = NameInUrl(url);
  return name.empty() ? kFallback : name;
}

}  // namespace stowra
