// A parser of multipart bodies in another language.

#ifndef TESTS_MULTIPART_NODE_READER_H_
#define TESTS_MULTIPART_NODE_READER_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/multipart/part.h"
#include "tests/support/child_process.h"

namespace stowra_test {

// A program of Node's, one of those beside this file, that answers each request on its standard
// input on its standard output. The test fails where Node is missing or the program ends.
class NodeProgram {
 public:
  explicit NodeProgram(const std::string& script, const std::vector<std::string>& arguments = {});

  // Empty after a failure.
  std::string Ask(const std::string& request);

  // What comes next of its output: a length and as many bytes.
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

// Whether multiparty gives a file name otherwise than it stands in the header. Browsers wrote a
// quotation mark as %22 and what their encoding lacks as &#8364; and old ones sent the folders,
// too: multiparty undoes all three.
bool IsRewrittenByMultiparty(const std::string& file_name);

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_NODE_READER_H_
