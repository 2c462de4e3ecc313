// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/part_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

constexpr mode_t kReadableByAll = 0666;  // less the umask
constexpr mode_t kReadableByOwner = 0600;
constexpr mode_t kPermissions = 0777;

// Bytes. With the endings a name stays below 255, the limit of common file systems.
constexpr std::size_t kLongestName = 235;

int ErrorUnless(bool good) { return good ? 0 : errno; }

// A link to nothing stays as it is.
std::string FollowLink(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

// Cuts a long name, but not inside a character of UTF-8.
std::string PartPath(const std::string& path) {
  std::size_t length = std::min(path.size(), path.rfind('/') + 1 + kLongestName);
  while (length < path.size() && (static_cast<unsigned char>(path[length]) & 0xC0U) == 0x80U) {
    --length;
  }
  return path.substr(0, length) + ".part";
}

}  // namespace

PartFile::PartFile(const std::string& path)
    : path_(FollowLink(path)), part_path_(PartPath(path_)), note_path_(part_path_ + ".validator") {}

PartFile::~PartFile() {
  if (!CanContinue()) Discard();
  Close();
}

int PartFile::Open() {
  if (is_open()) {
    is_new_ = is_new_ && !CanContinue();
    return CanContinue() ? 0 : ENOENT;
  }
  if (const int error = OpenAndLock(O_RDWR, 0)) return error;
  struct stat status = {};
  if (fstat(descriptor_, &status) == 0 && status.st_size > 0 && ReadNote()) {
    size_ = static_cast<std::uint64_t>(status.st_size);
    if (lseek(descriptor_, 0, SEEK_END) == status.st_size) return 0;
  }
  Close();
  return ENOENT;
}

int PartFile::Create(const PartNote& note, bool may_replace) {
  if (const int error = CheckTarget(may_replace)) return error;
  // An old part may have another name, too, or another mode.
  if (!is_open()) {
    const int error = OpenAndLock(O_RDWR, 0);
    if (error != 0 && error != ENOENT) return error;
  }
  Discard();
  const mode_t mode = mode_ ? kReadableByOwner : kReadableByAll;
  if (const int error = OpenAndLock(O_RDWR | O_CREAT | O_EXCL, mode)) return error;
  is_new_ = true;
  unlink(note_path_.c_str());  // of a part that is gone
  note_ = note;
  WriteNote();
  return 0;
}

int PartFile::Append(const unsigned char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t count = write(descriptor_, data, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    data += count;
    size -= static_cast<std::size_t>(count);
    size_ += static_cast<std::uint64_t>(count);
  }
  return 0;
}

int PartFile::Finish(bool may_replace) {
  if (const int error = CheckTarget(may_replace)) return error;
  if (mode_ && fchmod(descriptor_, *mode_) != 0) return errno;
  if (fsync(descriptor_) != 0) return errno;
  if (!HasItsName()) return ENOENT;
  if (const int error = GiveName(may_replace)) return error;
  unlink(note_path_.c_str());
  Close();
  return 0;
}

void PartFile::Discard() {
  if (is_open() && HasItsName()) {
    unlink(note_path_.c_str());
    unlink(part_path_.c_str());
  }
  Close();
}

// The lock ends when the part is closed.
int PartFile::OpenAndLock(int flags, mode_t mode) {
  const int opened = open(part_path_.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, mode);
  if (opened < 0) return errno;
  struct stat status = {};
  // Some file systems have no locks.
  const bool is_locked = flock(opened, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
  int error = ErrorUnless(is_locked && fstat(opened, &status) == 0);
  descriptor_ = opened;
  if (error == 0 && (!S_ISREG(status.st_mode) || !HasItsName())) error = EEXIST;
  if (error != 0) Close();
  return error;
}

// Another process may have removed the open part, and made a part of its own.
bool PartFile::HasItsName() const {
  struct stat here = {};
  struct stat named = {};
  return fstat(descriptor_, &here) == 0 && lstat(part_path_.c_str(), &named) == 0 &&
         here.st_ino == named.st_ino && here.st_dev == named.st_dev;
}

int PartFile::CheckTarget(bool may_replace) {
  struct stat status = {};
  if (lstat(path_.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
  mode_ = status.st_mode & kPermissions;
  return may_replace && S_ISREG(status.st_mode) ? 0 : EEXIST;
}

// Unlike a rename, a link never replaces a file that appears meanwhile. Some file systems have
// none.
int PartFile::GiveName(bool may_replace) {
  if (!may_replace) {
    if (link(part_path_.c_str(), path_.c_str()) == 0) {
      unlink(part_path_.c_str());
      return 0;
    }
    if (errno == EEXIST) return EEXIST;
  }
  return ErrorUnless(rename(part_path_.c_str(), path_.c_str()) == 0);
}

bool PartFile::ReadNote() {
  std::ifstream file(note_path_);
  std::uint64_t total = 0;
  note_ = PartNote();
  std::getline(file, note_.validator);
  if (file >> total) note_.total = total;
  return !note_.validator.empty() && IsHeaderValue(note_.validator);
}

// Without a note the part is not continued.
void PartFile::WriteNote() {
  if (note_.validator.empty()) return;
  std::ofstream file(note_path_);
  file << note_.validator << '\n';
  if (note_.total) file << std::to_string(*note_.total) << '\n';
  file.close();
  if (file) return;
  unlink(note_path_.c_str());
  note_ = PartNote();
}

void PartFile::Close() {
  if (is_open()) close(std::exchange(descriptor_, -1));
  note_ = PartNote();
  size_ = 0;
  is_new_ = false;
}

}  // namespace ovrant::internet
