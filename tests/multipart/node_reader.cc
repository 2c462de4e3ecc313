// SPDX-License-Identifier: MIT
#include "tests/multipart/node_reader.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <utility>

namespace stowra_test {

NodeProgram::NodeProgram(const std::string& script, const std::vector<std::string>& arguments) {
  ::signal(SIGPIPE, SIG_IGN);  // a write to an ended program then returns an error
  OwnedPipe input;
  OwnedPipe output;
  ChildProcess::Start start;
  start.program = STOWRA_NODE;
  start.arguments = {std::string(STOWRA_NODE_FOLDER) + "/" + script};
  start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
  start.descriptors = {{input.read_end.number(), STDIN_FILENO},
                       {output.write_end.number(), STDOUT_FILENO}};
  process_ = std::make_unique<ChildProcess>(start);
  input_ = std::move(input.write_end);
  output_ = std::move(output.read_end);
}

std::string NodeProgram::Ask(const std::string& request) {
  EXPECT_TRUE(input_.WriteAll(request)) << "the Node program has ended";
  return ReadText();
}

std::string NodeProgram::ReadText() {
  std::string bytes;
  if (output_.ReadExactly(EncodeNumber(0).size(), bytes) &&
      output_.ReadExactly(DecodeNumber(bytes), bytes)) {
    return bytes;
  }
  ADD_FAILURE() << "the Node program has ended";
  return {};
}

Reading NodeReader::Read(std::string_view content_type, std::string_view body) {
  return Decode(program_.Ask(EncodeText(content_type) + EncodeText(body)));
}

bool IsRewrittenByMultiparty(const std::string& file_name) {
  for (const char* telling : {"%22", "&#", "\\"}) {
    if (file_name.find(telling) != std::string::npos) return true;
  }
  return false;
}

}  // namespace stowra_test
