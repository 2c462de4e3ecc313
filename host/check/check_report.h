// SPDX-License-Identifier: MIT
// What a check has found.

#ifndef HOST_CHECK_CHECK_REPORT_H_
#define HOST_CHECK_CHECK_REPORT_H_

#include <string>
#include <utility>
#include <vector>

namespace stowra {

struct Finding {
  std::string text;
  bool is_loss = true;  // false: worth knowing, but the response is in order
};

// A file that an entry offers for download.
struct CheckedRendition {
  std::string url;
  std::string rtyp;  // the parameter of its URL
  bool is_chosen = false;
  std::string why;  // or why not
};

// One entry, file or element of a response.
struct CheckedPart {
  std::string name;  // such as "entry 7"
  std::string title;
  bool is_kept = false;
  std::vector<Finding> findings;
  std::vector<std::pair<std::string, std::string>> values;  // that the library has kept
  std::vector<CheckedRendition> renditions;
};

struct CheckReport {
  std::string kind;        // such as "feed"
  bool is_usable = false;  // what the library's class says
  std::vector<Finding> findings;
  std::vector<std::pair<std::string, std::string>> values;
  std::vector<CheckedPart> parts;
};

// Whether the response is usable, every part was kept, and nothing was lost.
bool IsWhole(const CheckReport& report);

std::string ToText(const CheckReport& report);
std::string ToJson(const CheckReport& report);

}  // namespace stowra

#endif  // HOST_CHECK_CHECK_REPORT_H_
