// SPDX-License-Identifier: MIT
// The place for the body of a download that is written while it arrives.

#ifndef COMMON_STOWRAAPI_PLATFORM_BODY_SINK_H_
#define COMMON_STOWRAAPI_PLATFORM_BODY_SINK_H_

#include <cstddef>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// The host derives from this class and gives an object to InternetData::DownloadTo. FileSink and
// MemorySink are ready to use.
//
// The functions are called in this order: RequestHeaders before each request, Begin once per reply
// that is not a followed redirect, Write for each piece, and End. They are called on the thread
// that BodySource names, and the same holds for their time.
//
// A function that fails or throws makes the download fail with TransferError::kBody. std::bad_alloc
// makes it fail with kOutOfMemory. When the download fails or is dropped, End is not called, and
// what was written is not the body.
class STOWRA_EXPORT BodySink {
 public:
  enum class Choice {
    kTake,      // the body is written to this sink
    kLeave,     // the body stays in the transport's memory, as after Download
    kAskAgain,  // the request is made once more. A second time the download fails with kBody.
    kFail,      // the download fails with kBody
  };

  BodySink() = default;
  virtual ~BodySink() = default;

  BodySink(const BodySink&) = delete;
  BodySink& operator=(const BodySink&) = delete;

  // Further headers of the request, such as Range. They win over all others. They also go to other
  // origins that a redirect names, so they must hold no secret.
  virtual ovrant::utils::StringMap RequestHeaders() { return {}; }

  // Chooses what happens to the reply's body. `headers` is as InternetData::received_headers. By
  // default takes a body with a status of 2xx other than 206, which would be a part of it.
  virtual Choice Begin(int status, const ovrant::utils::StringMap& headers) {
    static_cast<void>(headers);
    return status >= 200 && status < 300 && status != 206 ? Choice::kTake : Choice::kLeave;
  }

  // Takes the next `size` bytes of the decoded body. `size` is above 0. False on failure.
  virtual bool Write(const unsigned char* data, std::size_t size) = 0;

  // The whole body has been written. False on failure.
  virtual bool End() { return true; }
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_BODY_SINK_H_
