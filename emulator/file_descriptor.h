// SPDX-License-Identifier: MIT
// Ownership of a file descriptor.

#ifndef EMULATOR_FILE_DESCRIPTOR_H_
#define EMULATOR_FILE_DESCRIPTOR_H_

#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace stowra_emulator {

class FileDescriptor {
 public:
  FileDescriptor() = default;

  // Takes ownership of `fd`. Child processes will not inherit it. A negative `fd` owns nothing.
  explicit FileDescriptor(int fd) : fd_(fd) {
    if (fd_ >= 0) ::fcntl(fd_, F_SETFD, FD_CLOEXEC);
  }

  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~FileDescriptor() { Close(); }

  int get() const { return fd_; }

  void Close() {
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  }

  void SetNonBlocking() { ::fcntl(fd_, F_SETFL, ::fcntl(fd_, F_GETFL) | O_NONBLOCK); }

 private:
  int fd_ = -1;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_FILE_DESCRIPTOR_H_
