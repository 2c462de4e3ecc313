// SPDX-License-Identifier: MIT
#include "emulator/content/upload_store.h"

#include <fcntl.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "emulator/web_address.h"

namespace stowra_emulator {

UploadStore::UploadStore(const std::string& database_file)
    : folder_(database_file.empty() ? std::string() : database_file + "-uploads") {}

std::string UploadStore::SpoolFolder() const {
  if (folder_.empty()) return std::filesystem::temp_directory_path().string();
  std::filesystem::create_directories(folder_);
  return folder_;
}

void UploadStore::Keep(const std::string& mid, SpooledFile& file) {
  if (folder_.empty()) {
    unnamed_files_[mid] = std::make_shared<const FileDescriptor>(file.TakeDescriptor());
  } else {
    file.MoveTo(NameOf(mid));
  }
}

UploadStore::File UploadStore::Open(const std::string& mid) const {
  if (folder_.empty()) {
    const auto found = unnamed_files_.find(mid);
    if (found != unnamed_files_.end()) return found->second;
    throw std::system_error(ENOENT, std::generic_category(), mid);
  }
  auto file = std::make_shared<const FileDescriptor>(::open(NameOf(mid).c_str(), O_RDONLY));
  if (file->get() < 0) throw std::system_error(errno, std::generic_category(), NameOf(mid));
  return file;
}

std::string UploadStore::NameOf(const std::string& mid) const {
  return folder_ + "/" + PercentEncode(mid);
}

}  // namespace stowra_emulator
