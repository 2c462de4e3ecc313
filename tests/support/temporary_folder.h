// SPDX-License-Identifier: MIT
// A folder for the files of one test.

#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H_
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H_

#include <filesystem>

namespace stowra_test {

// A new folder in the system's temporary folder. The destructor removes it and its contents.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();

  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_TEMPORARY_FOLDER_H_
