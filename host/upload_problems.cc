// SPDX-License-Identifier: MIT
#include "host/upload_problems.h"

#include "host/utf8.h"

namespace stowra {

namespace {

std::string_view LastPart(std::string_view path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

std::vector<std::string> FindUploadProblems(const UploadForm& form) {
  std::vector<std::string> problems;
  if (form.file_name.find('"') != std::string_view::npos) {
    problems.emplace_back("a server may cut the file name at its quotation mark");
  }
  if (form.file_name.find_first_of("\r\n") != std::string_view::npos) {
    problems.emplace_back("a server may cut the file name at its line break");
  }
  if (!IsUtf8(LastPart(form.path))) {
    problems.emplace_back("the file name is not UTF-8 and is sent as " +
                          std::string(form.file_name));
  }
  if (form.zipped && !form.is_zip) {
    problems.emplace_back("the configuration asks for a zip file, but this is not one");
  }
  if (form.boundary == form.previous_boundary) {
    problems.emplace_back(
        "the boundary is the same as for the previous file, because both were made within one "
        "second");
  }
  return problems;
}

}  // namespace stowra
