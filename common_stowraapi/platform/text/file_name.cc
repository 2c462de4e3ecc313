// SPDX-License-Identifier: MIT
#include <cstddef>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::utils {
namespace {

#if defined(_WIN32)
constexpr const char* kSeparators = "/\\";
#else
constexpr const char* kSeparators = "/";
#endif

}  // namespace

ovrant_ustring GetFileName(const ovrant_ustring& path, bool with_extension) {
  ovrant_ustring name = std::move(path.TokenizeToVector(kSeparators).back());
  if (with_extension) return name;
  const std::vector<ovrant_ustring> parts = name.TokenizeToVector(".");
  const bool begins_with_last_dot = parts.size() == 2 && parts.front().empty();
  if (begins_with_last_dot) return name;
  ovrant_ustring stem = parts.front();
  for (std::size_t i = 1; i + 1 < parts.size(); ++i) {
    stem += ".";
    stem += parts[i];
  }
  return stem;
}

}  // namespace ovrant::utils
