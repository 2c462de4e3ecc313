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
    problems.emplace_back("a quotation mark in the file name ends the name there");
  }
  if (form.file_name.find_first_of("\r\n") != std::string_view::npos) {
    problems.emplace_back("a line break in the file name ends the name there");
  }
  if (!IsUtf8(LastPart(form.path))) {
    problems.emplace_back("the file name is not UTF-8 and is sent as " +
                          std::string(form.file_name));
  }
  if (form.zipped && form.content.substr(0, kZipBegin.size()) != kZipBegin) {
    problems.emplace_back("the configuration asks for a zipped file, and this is none");
  }
  if (Holds(form.content, form.boundary)) {
    problems.emplace_back("the file holds the boundary " + std::string(form.boundary) +
                          " and may end there");
  }
  if (form.size >= kTwoGibibytes) {
    problems.emplace_back(
        "the upload is 2 GiB or more, which the library's header map cannot say; this transport "
        "announces the true length by itself");
  }
  if (form.boundary == form.previous_boundary) {
    problems.emplace_back(
        "the boundary is that of the file before, since both were made within one second");
  }
  return problems;
}

}  // namespace stowra
