// SPDX-License-Identifier: MIT
// Reading the query part of a URL.

#ifndef COMMON_STOWRAAPI_PLATFORM_URL_H_
#define COMMON_STOWRAAPI_PLATFORM_URL_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// The query part of an absolute URL. It lies between the first '?' and the next '#', or the end.
// Any text is accepted. A URL without a query has no parameters. Not thread-safe.
class STOWRA_EXPORT URL {
 public:
  // Throws std::bad_alloc when memory runs out.
  explicit URL(ovrant::utils::ovrant_ustring url);

  // Finds the first parameter named `key`, compared as the URL spells it. Parameters are separated
  // by '&'. The first '=' separates name and value.
  //
  // True stores the value in `value`, decoded: "%XX" as a byte of UTF-8, "+" as a space. A '%'
  // without two hexadecimal digits stands for itself. A parameter without '=' has the empty value.
  //
  // False when there is no such parameter. Throws std::bad_alloc when memory runs out. `value` is
  // unchanged in both cases.
  bool getValueForExtraInfoKey(ovrant::utils::ovrant_ustring key,
                               ovrant::utils::ovrant_ustring& value);

 private:
  ovrant::utils::ovrant_ustring query_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_URL_H_
