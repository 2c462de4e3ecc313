// What the form of an upload cannot carry.

#ifndef HOST_UPLOAD_PROBLEMS_H_
#define HOST_UPLOAD_PROBLEMS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace stowra {

// One file of an upload and the form that it is sent in.
struct UploadForm {
  std::string_view path;       // as the user gave it
  std::string_view file_name;  // as it stands in the form
  std::string_view content;
  bool zipped = false;   // as the configuration asks for it
  std::size_t size = 0;  // bytes of the whole form
  std::string_view boundary;
  std::string_view previous_boundary;  // of the file before; empty for the first
};

// Why a server may not read the form as it was meant, one sentence each: nothing in it is escaped,
// its headers hold the length in 32 bits, and boundaries change once a second.
std::vector<std::string> FindUploadProblems(const UploadForm& form);

}  // namespace stowra

#endif  // HOST_UPLOAD_PROBLEMS_H_
