// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace stowra {

namespace {

constexpr mode_t kReadableByAll = 0666;  // less the umask
constexpr mode_t kReadableByOwner = 0600;
constexpr mode_t kPermissions = 0777;
constexpr int kMaxNames = 100;

struct FileCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

struct Free {
  void operator()(char* text) const { std::free(text); }
};

// The functions below return 0, an errno, or this value, which is no errno.
constexpr int kNotRegular = -1;

std::string ToText(int error) {
  return error == kNotRegular ? "not a regular file" : std::generic_category().message(error);
}

// True for error 0. Otherwise sets `why`.
bool Succeeds(int error, std::string& why) {
  if (error != 0) why = ToText(error);
  return error == 0;
}

int ReadToEnd(std::FILE* stream, std::string& content) {
  char bytes[16384];
  std::size_t count = 0;
  while ((count = std::fread(bytes, 1, sizeof(bytes), stream)) > 0) content.append(bytes, count);
  return std::ferror(stream) == 0 ? 0 : errno;
}

void ReserveFor(std::FILE* stream, std::string& content) {
  struct stat status = {};
  if (fstat(fileno(stream), &status) != 0 || !S_ISREG(status.st_mode)) return;
  content.reserve(static_cast<std::size_t>(status.st_size));
}

// A new file under a temporary name. MoveTo gives it its final name. The destructor removes the
// temporary name.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::filesystem::path folder) : folder_(std::move(folder)) {}
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!path_.empty()) unlink(path_.c_str());
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Without `mode`, the umask decides.
  int Create(std::optional<mode_t> mode);
  int Write(std::string_view content);
  int Close();
  int MoveTo(const std::string& file, Existing existing);

 private:
  int LinkTo(const std::string& file);

  const std::filesystem::path folder_;
  std::string path_;  // empty while there is none
  int descriptor_ = -1;
};

int TemporaryFile::Create(std::optional<mode_t> mode) {
  const mode_t first_mode = mode ? kReadableByOwner : kReadableByAll;
  for (int i = 0; i < kMaxNames; ++i) {
    const std::string path = folder_ / fmt::format(".stowra-{}-{}", getpid(), i);
    descriptor_ = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, first_mode);
    if (descriptor_ >= 0) {
      path_ = path;
      return mode && fchmod(descriptor_, *mode) != 0 ? errno : 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

int TemporaryFile::Write(std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = write(descriptor_, content.data(), content.size());
    if (count >= 0) {
      content.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// Syncs, so that the content is on the disk before the final name.
int TemporaryFile::Close() {
  const int error = fsync(descriptor_) == 0 ? 0 : errno;
  const int descriptor = std::exchange(descriptor_, -1);
  return close(descriptor) == 0 ? error : errno;
}

int TemporaryFile::MoveTo(const std::string& file, Existing existing) {
  if (existing == Existing::kKeep) return LinkTo(file);
  if (rename(path_.c_str(), file.c_str()) != 0) return errno;
  path_.clear();
  return 0;
}

// Unlike a rename, a link never replaces an existing file.
int TemporaryFile::LinkTo(const std::string& file) {
  if (link(path_.c_str(), file.c_str()) == 0) return 0;
  if (errno == EEXIST) return EEXIST;
  // Some file systems have no hard links.
  struct stat status = {};
  if (lstat(file.c_str(), &status) == 0) return EEXIST;
  return MoveTo(file, Existing::kReplace);
}

std::filesystem::path FolderOf(const std::string& file) {
  const std::filesystem::path folder = std::filesystem::path(file).parent_path();
  return folder.empty() ? "." : folder;
}

// The file to write, and the mode of the one that it replaces.
struct Destination {
  std::string file;
  std::optional<mode_t> mode;
};

// Whether `file` names an open descriptor, such as /dev/stdout does. It may lead to a regular file,
// but a rename would not write to that descriptor.
bool LeadsToDescriptor(std::filesystem::path file) {
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::canonical(FolderOf(file), error);
    const std::string name = folder.string() + "/";
    if (name.rfind("/proc/", 0) == 0 || name == "/dev/fd/") return true;
    const std::filesystem::path target = std::filesystem::read_symlink(file, error);
    if (error) return false;
    file = folder / target;
  }
  return false;
}

// Resolves symbolic links. Calls stat() first, since realpath() fails for a link to an unnamed
// pipe.
int FollowLinks(const std::string& file, Destination& destination) {
  if (LeadsToDescriptor(file)) return kNotRegular;
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return kNotRegular;
  const std::unique_ptr<char, Free> path(realpath(file.c_str(), nullptr));
  if (path == nullptr) return errno;
  destination = {path.get(), status.st_mode & kPermissions};
  return 0;
}

int FindDestination(const std::string& file, Destination& destination) {
  struct stat status = {};
  if (lstat(file.c_str(), &status) != 0) {
    const int error = errno;
    destination = {file, std::nullopt};
    return error == ENOENT ? 0 : error;
  }
  if (S_ISLNK(status.st_mode)) return FollowLinks(file, destination);
  if (LeadsToDescriptor(file)) return kNotRegular;
  destination = {file, status.st_mode & kPermissions};
  return S_ISREG(status.st_mode) ? 0 : kNotRegular;
}

int Write(const std::string& file, std::string_view content, Existing existing) {
  Destination destination = {file, std::nullopt};
  if (existing == Existing::kReplace) {
    if (const int error = FindDestination(file, destination)) return error;
  }
  TemporaryFile temporary(FolderOf(destination.file));
  if (const int error = temporary.Create(destination.mode)) return error;
  if (const int error = temporary.Write(content)) return error;
  if (const int error = temporary.Close()) return error;
  return temporary.MoveTo(destination.file, existing);
}

int TryToMakeFileIn(const std::filesystem::path& folder) {
  return TemporaryFile(folder).Create(std::nullopt);
}

int TryToReplace(const std::string& file) {
  Destination destination;
  if (const int error = FindDestination(file, destination)) return error;
  return TryToMakeFileIn(FolderOf(destination.file));
}

}  // namespace

bool ReadFile(const std::string& file, std::string& content, std::string& why) {
  const std::unique_ptr<std::FILE, FileCloser> stream(std::fopen(file.c_str(), "rb"));
  int error = errno;
  content.clear();
  if (stream != nullptr) {
    ReserveFor(stream.get(), content);
    error = ReadToEnd(stream.get(), content);
  }
  return Succeeds(error, why);
}

bool ReadInput(std::string& content, std::string& why) {
  content.clear();
  return Succeeds(ReadToEnd(stdin, content), why);
}

bool WriteFile(const std::string& file, std::string_view content, Existing existing,
               std::string& why) {
  return Succeeds(Write(file, content, existing), why);
}

bool WriteToStdout(std::string_view content, std::string& why) {
  const bool written = std::fwrite(content.data(), 1, content.size(), stdout) == content.size();
  return Succeeds(written && std::fflush(stdout) == 0 ? 0 : errno, why);
}

bool CanReplaceFile(const std::string& file, std::string& why) {
  return Succeeds(TryToReplace(file), why);
}

bool CanMakeFileIn(const std::string& folder, std::string& why) {
  return Succeeds(TryToMakeFileIn(folder), why);
}

}  // namespace stowra
