// SPDX-License-Identifier: MIT
// The files that clients have uploaded.

#ifndef EMULATOR_CONTENT_UPLOAD_STORE_H_
#define EMULATOR_CONTENT_UPLOAD_STORE_H_

#include <map>
#include <memory>
#include <string>

#include "emulator/file_descriptor.h"
#include "emulator/spooled_file.h"

namespace stowra_emulator {

// Not thread-safe, but what it hands out is independent of it.
class UploadStore {
 public:
  using File = std::shared_ptr<const FileDescriptor>;

  // Keeps the files beside the database, in the folder `database_file` + "-uploads". With an empty
  // name the files have no names and vanish with this object.
  explicit UploadStore(const std::string& database_file);

  // Where to spool a file that is to be kept. Made when it is asked for.
  // Throws std::filesystem::filesystem_error if that fails.
  std::string SpoolFolder() const;

  // Throws std::system_error if the file cannot be kept.
  void Keep(const std::string& mid, SpooledFile& file);

  // For pread. Throws std::system_error if there is no such file.
  File Open(const std::string& mid) const;

 private:
  std::string NameOf(const std::string& mid) const;

  const std::string folder_;
  std::map<std::string, File> unnamed_files_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_UPLOAD_STORE_H_
