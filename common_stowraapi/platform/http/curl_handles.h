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

// Whether an easy handle may make another transfer.
//
// Before 8.1.1 libcurl keeps a pointer to the last header of a transfer and frees that header. If
// the first header line of the next transfer begins with a blank, libcurl takes it for a
// continuation. It then follows the pointer.
//
//   kFree:    the version has no such fault.
//   kGuarded: the version shows each line before it takes it (CURLOPT_DEBUGFUNCTION). It takes
//             nothing of a transfer that is paused by then.
//   kNever:   all other versions.
enum class EasyReuse { kFree, kGuarded, kNever };

// The answer for the libcurl in use.
EasyReuse HowToReuseEasyHandles();

// Whether CURLOPT_DEBUGFUNCTION gets the messages of TLS. It does when libcurl uses OpenSSL.
bool ShowsTlsMessages();

// These throw std::bad_alloc when memory runs out.
EasyHandle MakeEasyHandle();
MultiHandle MakeMultiHandle();
void AppendHeaderLine(const char* line, HeaderList& list);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CURL_HANDLES_H_
