// SPDX-License-Identifier: MIT
// A temporary file for bytes that are too many for memory.

#ifndef EMULATOR_SPOOLED_FILE_H_
#define EMULATOR_SPOOLED_FILE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// The destructor removes the file unless it was given a name. For one thread. What fails throws
// std::system_error.
class SpooledFile {
 public:
  // Makes a file in `folder`.
  explicit SpooledFile(const std::string& folder);
  SpooledFile(SpooledFile&& other) noexcept
      : name_(std::exchange(other.name_, std::string())),
        file_(std::move(other.file_)),
        size_(other.size_) {}
  ~SpooledFile();

  void Append(std::string_view bytes);
  std::uint64_t size() const { return size_; }

  // Gives the file this name in the same file system, in place of a file that has it.
  void MoveTo(const std::string& name);

  // The file stays readable through the descriptor after this object has gone.
  FileDescriptor TakeDescriptor() { return std::move(file_); }

 private:
  std::string name_;
  FileDescriptor file_;
  std::uint64_t size_ = 0;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_SPOOLED_FILE_H_
