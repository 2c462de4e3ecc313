#include "host/download_name.h"

#include <algorithm>
#include <string_view>

#include "common_stowraapi/content/content_helpers.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kFallback[] = "download";

std::string WithoutFolders(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return std::string(separator == std::string_view::npos ? path : path.substr(separator + 1));
}

// A quotation mark here is one that ends a name within which there was no extension.
bool IsFit(const std::string& name) {
  return !name.empty() && name[0] != '.' && name.find('"') == std::string::npos &&
         Printable(name) == name;
}

// From the extension at which the library ends the name to where the header does: "chair.qmf.zip"
// keeps both.
std::string ExtensionIn(const std::string& header) {
  const std::size_t qmf = header.find(".qmf");
  const std::size_t begin = qmf != std::string::npos ? qmf : header.find(".kmz");
  const bool quoted = header.find("filename=\"") != std::string::npos;
  return header.substr(begin, header.find_first_of(quoted ? "\"" : "; \t", begin) - begin);
}

std::string NameInHeader(const ovrant_ustring& header) {
  const std::string base =
      ovrant::stowraapiclient::GetFilenameFromContentDisposition(header).utf8();
  if (base.empty()) return {};
  const std::string name = WithoutFolders(base + ExtensionIn(header.utf8()));
  return IsFit(name) ? name : std::string();
}

std::string NameInUrl(const std::string& url) {
  const std::string_view path(url.data(), std::min(url.find_first_of("?#"), url.size()));
  const std::size_t host = path.find("://");
  if (host == std::string_view::npos) return {};
  const std::size_t begin = path.find('/', host + 3);
  if (begin == std::string_view::npos) return {};
  const std::string name = WithoutFolders(path.substr(begin));
  return IsFit(name) ? name : std::string();
}

}  // namespace

std::string ChooseFileName(const ovrant_ustring& content_disposition, const std::string& url) {
  std::string name = NameInHeader(content_disposition);
  if (name.empty()) name = NameInUrl(url);
  return name.empty() ? kFallback : name;
}

}  // namespace stowra
