// Reading the query part of a URL.

#ifndef COMMON_STOWRAAPI_PLATFORM_URL_H_
#define COMMON_STOWRAAPI_PLATFORM_URL_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// An absolute URL, of which the query part can be searched: what stands between the first '?' and
// '#' or the end. Any text is accepted; one without a query has no parameters. Not thread-safe.
class STOWRA_EXPORT URL {
 public:
  explicit URL(ovrant::utils::ovrant_ustring url);

  // Finds the first parameter named `key`, as it is written in the URL (parameters are separated by
  // '&', name and value by the first '='). True with its value in `value`: percent-decoded as
  // UTF-8, "+" read as a space, empty if the parameter has none. A '%' without two hexadecimal
  // digits stands for itself. False if there is no such parameter; `value` is then unchanged, as it
  // is when memory runs out, which throws std::bad_alloc.
  bool getValueForExtraInfoKey(ovrant::utils::ovrant_ustring key,
                               ovrant::utils::ovrant_ustring& value);

 private:
  ovrant::utils::ovrant_ustring query_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_URL_H_
