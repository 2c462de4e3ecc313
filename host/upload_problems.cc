#include "host/upload_problems.h"

namespace stowra {

namespace {

constexpr std::size_t kTwoGibibytes = std::size_t{1} << 31;

bool Holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

}  // namespace

std::vector<std::string> FindUploadProblems(const UploadForm& form) {
  std::vector<std::string> problems;
  if (Holds(form.file_name, "\"")) {
    problems.emplace_back("a quotation mark in the file name ends the name there");
  }
  if (form.file_name.find_first_of("\r\n") != std::string_view::npos) {
    problems.emplace_back("a line break in the file name ends the name there");
  }
  if (Holds(form.content, form.boundary)) {
    problems.emplace_back("the file holds the boundary " + std::string(form.boundary) +
                          " and may end there");
  }
  if (form.size >= kTwoGibibytes) {
    problems.emplace_back("the upload is 2 GiB or more, and its Content-Length cannot say so");
  }
  if (form.boundary == form.previous_boundary) {
    problems.emplace_back(
        "the boundary is that of the file before, since both were made within one second");
  }
  return problems;
}

}  // namespace stowra
