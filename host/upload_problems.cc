// SPDX-License-Identifier: MIT
#include "host/upload_problems.h"

#include "host/utf8.h"

namespace stowra {

namespace {

constexpr std::size_t kTwoGibibytes = std::size_t{1} << 31;
constexpr std::string_view kZipBegin = "PK";

bool Holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

std::string_view LastPart(std::string_view path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

std::vector<std::string> FindUploadProblems(const UploadForm& form) {
  std::vector<std::string> problems;
  if (Holds(form.file_name, "\"")) {
    problems.emplace_back("a server may cut the file name at its quotation mark");
  }
  if (form.file_name.find_first_of("\r\n") != std::string_view::npos) {
    problems.emplace_back("a server may cut the file name at its line break");
  }
  if (!IsUtf8(LastPart(form.path))) {
    problems.emplace_back("the file name is not UTF-8 and is sent as " +
                          std::string(form.file_name));
  }
  if (form.zipped && form.content.substr(0, kZipBegin.size()) != kZipBegin) {
    problems.emplace_back("the configuration asks for a zip file, but this is not one");
  }
  if (Holds(form.content, form.boundary)) {
    problems.emplace_back("the file contains the boundary " + std::string(form.boundary) +
                          ", and a server may cut it there");
  }
  if (form.size >= kTwoGibibytes) {
    problems.emplace_back(
        "the upload is 2 GiB or more, so its headers give a wrong length; the library's own "
        "transport "
        "corrects it");
  }
  if (form.boundary == form.previous_boundary) {
    problems.emplace_back(
        "the boundary is the same as for the previous file, because both were made within one "
        "second");
  }
  return problems;
}

}  // namespace stowra
