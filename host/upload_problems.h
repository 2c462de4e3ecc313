// SPDX-License-Identifier: MIT
// Finds what an upload's form cannot carry safely.

#ifndef HOST_UPLOAD_PROBLEMS_H_
#define HOST_UPLOAD_PROBLEMS_H_

#include <string>
#include <string_view>
#include <vector>

namespace stowra {

// A file and the form in which it is sent.
struct UploadForm {
  std::string_view path;       // as the user gave it
  std::string_view file_name;  // as it stands in the form
  bool is_zip = false;         // the file begins as a zip file
  bool zipped = false;         // the configuration asks for one
  std::string_view boundary;
  std::string_view previous_boundary;  // of the file before; empty for the first
};

// The reasons why a server may misread the form, one text each. The form escapes nothing, and its
// boundary changes only once a second.
std::vector<std::string> FindUploadProblems(const UploadForm& form);

}  // namespace stowra

#endif  // HOST_UPLOAD_PROBLEMS_H_
