// SPDX-License-Identifier: MIT
#include "benchmarks/content/bare_expat.h"

#include <expat.h>

#include <memory>

namespace stowra_bench {

bool ParseBare(std::string_view document) {
  struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };
  const std::unique_ptr<XML_ParserStruct, FreeParser> parser(XML_ParserCreateNS(nullptr, ':'));
  const int size = static_cast<int>(document.size());
  return XML_Parse(parser.get(), document.data(), size, XML_TRUE) == XML_STATUS_OK;
}

}  // namespace stowra_bench
