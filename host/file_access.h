// Whole files.

#ifndef HOST_FILE_ACCESS_H_
#define HOST_FILE_ACCESS_H_

#include <string>
#include <string_view>

namespace stowra {

// Replaces `content` by the whole file, or by the rest of standard input. False, with the reason in
// `why`, when that cannot be read; `content` is then unspecified.
bool ReadFile(const std::string& file, std::string& content, std::string& why);
bool ReadInput(std::string& content, std::string& why);

// What to do about a file that is already there.
enum class Existing { kKeep, kReplace };

// Makes `file` with this content: under that name there is never a part of it. What is written
// stands under another name in the same folder until it is whole. A file that is replaced leaves
// its mode to the new one; where `file` is a symbolic link, that is the file it leads to, and the
// link stays. False, with the reason in `why` and nothing of it left, when it cannot be written,
// when the file is there and must be kept, or when what is there is no regular file.
bool WriteFile(const std::string& file, std::string_view content, Existing existing,
               std::string& why);

// Whether a file could be replaced, or made, under that name, and whether one could be made in that
// folder: what is known before there is any content. If not, `why` says why.
bool CanReplaceFile(const std::string& file, std::string& why);
bool CanMakeFileIn(const std::string& folder, std::string& why);

}  // namespace stowra

#endif  // HOST_FILE_ACCESS_H_
