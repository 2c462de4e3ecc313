#include "host/file_access.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace stowra {

namespace {

constexpr mode_t kReadableByAll = 0666;  // but for the user's own mask
constexpr int kMaxNames = 100;

struct FileCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

// The errors below are an errno, or 0.
std::string ToText(int error) { return std::generic_category().message(error); }

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

// A new file with a name of its own in the folder of another, removed with this object unless it
// has been given that one's name.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::filesystem::path folder) : folder_(std::move(folder)) {}
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!path_.empty()) unlink(path_.c_str());
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int Create();
  int Write(std::string_view content);
  int Close();
  int MoveTo(const std::string& file, Existing existing);

 private:
  int LinkTo(const std::string& file);

  const std::filesystem::path folder_;
  std::string path_;  // empty while there is none
  int descriptor_ = -1;
};

int TemporaryFile::Create() {
  for (int i = 0; i < kMaxNames; ++i) {
    const std::string path = folder_ / fmt::format(".stowra-{}-{}", getpid(), i);
    descriptor_ = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadableByAll);
    if (descriptor_ >= 0) {
      path_ = path;
      return 0;
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

// The content is on the disk before the name is.
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

// Unlike a move, a link never replaces what is there.
int TemporaryFile::LinkTo(const std::string& file) {
  if (link(path_.c_str(), file.c_str()) == 0) return 0;
  if (errno == EEXIST) return EEXIST;
  // Some file systems have no links.
  struct stat status = {};
  if (lstat(file.c_str(), &status) == 0) return EEXIST;
  return MoveTo(file, Existing::kReplace);
}

int Write(const std::string& file, std::string_view content, Existing existing) {
  const std::filesystem::path folder = std::filesystem::path(file).parent_path();
  TemporaryFile temporary(folder.empty() ? "." : folder);
  if (const int error = temporary.Create()) return error;
  if (const int error = temporary.Write(content)) return error;
  if (const int error = temporary.Close()) return error;
  return temporary.MoveTo(file, existing);
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
  if (error != 0) why = ToText(error);
  return error == 0;
}

bool ReadInput(std::string& content, std::string& why) {
  content.clear();
  const int error = ReadToEnd(stdin, content);
  if (error != 0) why = ToText(error);
  return error == 0;
}

bool WriteFile(const std::string& file, std::string_view content, Existing existing,
               std::string& why) {
  struct stat status = {};
  if (stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    why = "not a regular file";
    return false;
  }
  const int error = Write(file, content, existing);
  if (error != 0) why = ToText(error);
  return error == 0;
}

}  // namespace stowra
