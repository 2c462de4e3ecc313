// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/file_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace ovrant::internet {

FileSource::FileSource(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  struct stat status = {};
  if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
    error_ = errno;
  } else if (S_ISDIR(status.st_mode)) {
    error_ = EISDIR;
  }
}

FileSource::~FileSource() {
  if (descriptor_ >= 0) close(descriptor_);
}

// A pipe cannot go back, and need not before its first byte is read.
bool FileSource::Rewind() {
  if (error_ != 0) return false;
  if (has_read_ && lseek(descriptor_, 0, SEEK_SET) < 0) return Fail(errno);
  has_read_ = false;
  return true;
}

std::optional<std::uint64_t> FileSource::Length() {
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

bool FileSource::Read(unsigned char* data, std::size_t size, std::size_t& count) {
  ssize_t got = -1;
  do {
    got = read(descriptor_, data, size);
  } while (got < 0 && errno == EINTR);
  if (got < 0) return Fail(errno);
  has_read_ = has_read_ || got > 0;
  count = static_cast<std::size_t>(got);
  return true;
}

bool FileSource::Fail(int error) {
  if (error_ == 0) error_ = error;
  return false;
}

}  // namespace ovrant::internet
