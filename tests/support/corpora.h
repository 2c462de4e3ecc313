// Where the test corpora are.

#ifndef TESTS_SUPPORT_CORPORA_H_
#define TESTS_SUPPORT_CORPORA_H_

#include <filesystem>
#include <string>
#include <vector>

namespace stowra_test {

// The folder of one corpus; empty where the corpora are not on this machine: see
// SKIP_WITHOUT_CORPUS.
std::filesystem::path CorpusFolder(const std::string& name);

// The regular files directly in a folder, sorted by name.
std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder);

// The whole file as bytes; fails the current test when it cannot be read.
std::string ReadFile(const std::filesystem::path& file);

}  // namespace stowra_test

// Declares `folder`, or skips the test with a message.
#define SKIP_WITHOUT_CORPUS(folder, name)                               \
  const std::filesystem::path folder = stowra_test::CorpusFolder(name); \
  if (folder.empty()) GTEST_SKIP() << "no corpus '" << (name) << "' in STOWRA_CORPORA_DIR"

#endif  // TESTS_SUPPORT_CORPORA_H_
