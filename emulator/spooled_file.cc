// SPDX-License-Identifier: MIT
#include "emulator/spooled_file.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace stowra_emulator {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

SpooledFile::SpooledFile(const std::string& folder) {
  std::string name = folder + "/stowra-emulator-XXXXXX";
  file_ = FileDescriptor(::mkstemp(name.data()));
  if (file_.get() < 0) Fail("cannot create a file in " + folder);
  name_ = name;
}

SpooledFile::~SpooledFile() {
  if (!name_.empty()) ::unlink(name_.c_str());
}

void SpooledFile::Append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) Fail("cannot write " + name_);
    if (written < 0) continue;
    bytes.remove_prefix(static_cast<std::size_t>(written));
    size_ += static_cast<std::uint64_t>(written);
  }
}

void SpooledFile::MoveTo(const std::string& name) {
  if (::rename(name_.c_str(), name.c_str()) != 0) Fail("cannot rename a file to " + name);
  name_.clear();
}

}  // namespace stowra_emulator
