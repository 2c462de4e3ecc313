// SPDX-License-Identifier: MIT
// Reads multipart bodies with a parser in JavaScript.

#ifndef TESTS_MULTIPART_NODE_READER_H_
#define TESTS_MULTIPART_NODE_READER_H_

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/multipart/part.h"
#include "tests/support/child_process.h"
#include "tests/support/corpora.h"

namespace stowra_test {

// Skips the test if Node or its packages are missing.
#define SKIP_WITHOUT_NODE()                                                                   \
  if (std::string(STOWRA_NODE).empty() ||                                                     \
      !std::filesystem::exists(STOWRA_NODE_FOLDER "/packages.stamp"))                         \
  SKIP_OR_FAIL() << "Node or its packages are not installed, which the target node_packages " \
                    "installs"

// Runs a Node script of this folder. It reads requests from standard input and writes answers to
// standard output. The test fails if the script ends early.
class NodeProgram {
 public:
  explicit NodeProgram(const std::string& script, const std::vector<std::string>& arguments = {});

  // Sends a request and returns the answer, or an empty text on failure.
  std::string Ask(const std::string& request);

  // Reads the next text of the output: a length, then that many bytes. Fails like Ask.
  std::string ReadText();

 private:
  OwnedDescriptor input_;
  OwnedDescriptor output_;
  std::unique_ptr<ChildProcess> process_;
};

// Reads bodies with the package multiparty.
class NodeReader {
 public:
  NodeReader() : program_("read_bodies.mjs") {}

  Reading Read(std::string_view content_type, std::string_view body);

 private:
  NodeProgram program_;
};

// Whether multiparty changes this file name. Browsers write a quotation mark as %22 and a character
// outside their encoding as &#8364;. Old browsers also send the folder. Multiparty undoes all
// three.
bool IsRewrittenByMultiparty(const std::string& file_name);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_NODE_READER_H_
