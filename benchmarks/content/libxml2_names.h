// SPDX-License-Identifier: MIT
// The names of a feed's elements in libxml2.

#ifndef BENCHMARKS_CONTENT_LIBXML2_NAMES_H_
#define BENCHMARKS_CONTENT_LIBXML2_NAMES_H_

#include <libxml/parser.h>

#include <array>
#include <iterator>

#include "benchmarks/content/feed_builder.h"

namespace stowra_bench {

inline const xmlChar* Chars(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

inline const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

// Without NOENT, values in events contain "&#38;" for "&". HUGE removes the size limit of a
// document.
inline constexpr int kLibxml2Options =
    XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

// The names in a parser's dictionary. The parser reports names from the same dictionary, so
// comparing pointers is enough.
class Libxml2Names {
 public:
  explicit Libxml2Names(xmlDict* dictionary) {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      names_[i] = {xmlDictLookup(dictionary, Chars(kElementNames[i].uri), -1),
                   xmlDictLookup(dictionary, Chars(kElementNames[i].local_name), -1)};
    }
  }

  Element Classify(const xmlChar* uri, const xmlChar* local_name) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (names_[i].local_name == local_name && names_[i].uri == uri) {
        return kElementNames[i].element;
      }
    }
    return Element::kOther;
  }

 private:
  struct Name {
    const xmlChar* uri;
    const xmlChar* local_name;
  };
  std::array<Name, std::size(kElementNames)> names_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_LIBXML2_NAMES_H_
