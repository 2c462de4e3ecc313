// SPDX-License-Identifier: MIT
// Owners of libcurl's handles. They are untyped, because only source files include libcurl.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_CURL_HANDLES_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_CURL_HANDLES_H_

#include <memory>

namespace ovrant::internet {

struct EasyDeleter {
  void operator()(void* easy) const;
};
struct MultiDeleter {
  void operator()(void* multi) const;
};
struct HeaderListDeleter {
  void operator()(void* list) const;
};

using EasyHandle = std::unique_ptr<void, EasyDeleter>;    // CURL
using MultiHandle = std::unique_ptr<void, MultiDeleter>;  // CURLM, destroyed after its easy handles
using HeaderList = std::unique_ptr<void, HeaderListDeleter>;  // curl_slist

// Initialises libcurl once for the process. Call it before making any handle. Throws std::bad_alloc
// on failure.
void EnsureCurl();

// Whether CURLOPT_DEBUGFUNCTION gets the messages of TLS. It does when libcurl uses OpenSSL.
bool ShowsTlsMessages();

// These throw std::bad_alloc when memory runs out.
EasyHandle MakeEasyHandle();
MultiHandle MakeMultiHandle();
void AppendHeaderLine(const char* line, HeaderList& list);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CURL_HANDLES_H_
