// SPDX-License-Identifier: MIT
#include "tests/support/corpora.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace stowra_test {

std::filesystem::path CorpusFolder(const std::string& name) {
  const std::filesystem::path folder = std::filesystem::path(STOWRA_CORPORA_DIR) / name;
  return std::filesystem::is_directory(folder) ? folder : std::filesystem::path();
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << "cannot read " << file;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace stowra_test
