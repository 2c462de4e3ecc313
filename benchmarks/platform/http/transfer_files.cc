// SPDX-License-Identifier: MIT
#include "benchmarks/platform/http/transfer_files.h"

#include <map>

#include "benchmarks/support/inputs.h"
#include "benchmarks/support/nginx.h"

namespace stowra_bench {

std::string UrlOfFile(std::size_t size) {
  static std::map<std::size_t, std::string> urls;
  std::string& url = urls[size];
  if (url.empty()) {
    Nginx& server = Nginx::OfThisProgram();
    const std::string name = std::to_string(size);
    url =
        size < kHugeBody ? server.AddFile(name, MakeBytes(size)) : server.AddSparseFile(name, size);
  }
  return url;
}

}  // namespace stowra_bench
