// SPDX-License-Identifier: MIT
// A file that is not whole yet, and what it is a part of.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_PART_FILE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_PART_FILE_H_

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ovrant::internet {

// What a part belongs to. Kept in a second file beside the part.
struct PartNote {
  std::string validator;               // for If-Range; empty: the part cannot be continued
  std::optional<std::uint64_t> total;  // bytes of the whole
};

// The functions that return an int return 0 or an errno. For one thread at a time.
class PartFile {
 public:
  // Follows a link of the name `path`.
  explicit PartFile(const std::string& path);

  // Closes the part. Removes it if it cannot be continued.
  ~PartFile();

  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  // Opens a part that an earlier object has left with its note, unless it is open. Fails with
  // EWOULDBLOCK while another object has the part, and if it cannot be continued.
  int Open();

  // Makes a new part and keeps `note`. An old part is removed. Fails with EEXIST if a file of the
  // final name may not be replaced, and with EWOULDBLOCK as above.
  int Create(const PartNote& note, bool may_replace);

  int Append(const unsigned char* data, std::size_t size);

  // Brings the part to the disk and gives it the final name. Fails as Create, and with ENOENT if
  // the part's name is no longer that of this part.
  int Finish(bool may_replace);

  // Removes the part and its note, if it is open.
  void Discard();

  bool CanContinue() const { return is_open() && size_ > 0 && !note_.validator.empty(); }

  // True if the open part has been created here and never continued.
  bool is_new() const { return is_open() && is_new_; }

  // Of the open part.
  const PartNote& note() const { return note_; }
  std::uint64_t size() const { return size_; }

 private:
  bool is_open() const { return descriptor_ >= 0; }
  int OpenAndLock(int flags, mode_t mode);
  bool HasItsName() const;
  int CheckTarget(bool may_replace);
  int GiveName(bool may_replace);
  bool ReadNote();
  void WriteNote();
  void Close();

  const std::string path_;
  const std::string part_path_;
  const std::string note_path_;
  int descriptor_ = -1;
  PartNote note_;
  std::uint64_t size_ = 0;
  bool is_new_ = false;
  std::optional<mode_t> mode_;  // of the file that is replaced
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_PART_FILE_H_
