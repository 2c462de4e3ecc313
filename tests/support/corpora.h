// SPDX-License-Identifier: MIT
// Finds and reads the test corpora.

#ifndef TESTS_SUPPORT_CORPORA_H_
#define TESTS_SUPPORT_CORPORA_H_

#include <filesystem>
#include <string>
#include <vector>

namespace stowra_test {

// The folder of one corpus, or an empty path without it (SKIP_WITHOUT_CORPUS).
std::filesystem::path CorpusFolder(const std::string& name);

// The regular files directly in a folder, sorted by name.
std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder);

// The file's bytes. Fails the current test if it cannot read them.
std::string ReadFile(const std::filesystem::path& file);

}  // namespace stowra_test

// Ends a test that lacks something. That is a failure if STOWRA_REQUIRE_CORPORA is set.
#if STOWRA_REQUIRE_CORPORA
#define SKIP_OR_FAIL() FAIL()
#else
#define SKIP_OR_FAIL() GTEST_SKIP()
#endif

// Declares `folder`, or skips the test if the corpus is missing.
#define SKIP_WITHOUT_CORPUS(folder, name)                               \
  const std::filesystem::path folder = stowra_test::CorpusFolder(name); \
  if (folder.empty()) SKIP_OR_FAIL() << "no corpus '" << (name) << "' in STOWRA_CORPORA_DIR"

#endif  // TESTS_SUPPORT_CORPORA_H_
