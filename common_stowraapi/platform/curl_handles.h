// libcurl's handles, owned. They are untyped here: only source files include libcurl.

#ifndef COMMON_STOWRAAPI_PLATFORM_CURL_HANDLES_H_
#define COMMON_STOWRAAPI_PLATFORM_CURL_HANDLES_H_

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

using EasyHandle = std::unique_ptr<void, EasyDeleter>;        // CURL
using MultiHandle = std::unique_ptr<void, MultiDeleter>;      // CURLM; after its easy handles
using HeaderList = std::unique_ptr<void, HeaderListDeleter>;  // curl_slist

// Sets libcurl up, once for the process; before any handle is made.
void EnsureCurl();

// Whether an easy handle may make another transfer. Before 8.1.1 libcurl kept a pointer into the
// headers of the one before, which it freed, and followed it when a response began with a folded
// header line.
bool MayReuseEasyHandles();

// std::bad_alloc when there is no memory.
EasyHandle MakeEasyHandle();
MultiHandle MakeMultiHandle();
void AppendHeaderLine(const char* line, HeaderList& list);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_CURL_HANDLES_H_
