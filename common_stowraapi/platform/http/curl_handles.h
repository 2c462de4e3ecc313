// libcurl's handles, owned. They are untyped here: only source files include libcurl.

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

using EasyHandle = std::unique_ptr<void, EasyDeleter>;        // CURL
using MultiHandle = std::unique_ptr<void, MultiDeleter>;      // CURLM; after its easy handles
using HeaderList = std::unique_ptr<void, HeaderListDeleter>;  // curl_slist

// Sets libcurl up, once for the process; before any handle is made.
void EnsureCurl();

// Before 8.1.1 libcurl keeps a pointer to the last header of an easy handle's transfer, which it
// frees, and follows it in the next one when the first header line there begins with a blank, as if
// it continued one. kGuarded: a version that is known to show each line (CURLOPT_DEBUGFUNCTION)
// before it takes it, and to take nothing of a transfer that is paused by then.
enum class EasyReuse { kFree, kGuarded, kNever };

// Whether, in the version that runs, an easy handle may make another transfer.
EasyReuse HowToReuseEasyHandles();

// Whether libcurl shows the messages of TLS (CURLOPT_DEBUGFUNCTION), as it does with OpenSSL.
bool ShowsTlsMessages();

// std::bad_alloc when there is no memory.
EasyHandle MakeEasyHandle();
MultiHandle MakeMultiHandle();
void AppendHeaderLine(const char* line, HeaderList& list);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CURL_HANDLES_H_
