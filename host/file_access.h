// SPDX-License-Identifier: MIT
// Reads and writes whole files.

#ifndef HOST_FILE_ACCESS_H_
#define HOST_FILE_ACCESS_H_

#include <string>
#include <string_view>

namespace stowra {

// Reads the whole file, or the rest of standard input, into `content`. On failure returns false
// with the reason in `why`, and `content` is unspecified.
bool ReadFile(const std::string& file, std::string& content, std::string& why);
bool ReadInput(std::string& content, std::string& why);

// What to do with a file that already exists.
enum class Existing { kKeep, kReplace };

// Writes a temporary file in the same folder and then gives it the name `file`, so that `file` is
// never incomplete. kReplace follows symbolic links and keeps the mode of the file it replaces.
// Returns false with the reason in `why` if writing fails. kKeep also fails if `file` exists, even
// as a dangling link. kReplace also fails if `file` is not a regular file, such as a folder, a
// device or a pipe, and if it names an open descriptor, such as /dev/stdout. After a failure the
// existing file is unchanged and the temporary file is gone.
bool WriteFile(const std::string& file, std::string_view content, Existing existing,
               std::string& why);

// Writes all of `content` to standard output. Returns false with the reason in `why` if it fails.
bool WriteToStdout(std::string_view content, std::string& why);

// Checks that need no content yet. CanReplaceFile: WriteFile could replace or create `file`.
// CanMakeFileIn: a file can be created in `folder`. If not, `why` says why.
bool CanReplaceFile(const std::string& file, std::string& why);
bool CanMakeFileIn(const std::string& folder, std::string& why);

}  // namespace stowra

#endif  // HOST_FILE_ACCESS_H_
