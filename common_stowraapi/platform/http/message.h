// SPDX-License-Identifier: MIT
// One HTTP request, and the reply to it.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_MESSAGE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_MESSAGE_H_

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "common_stowraapi/platform/http/body_buffer.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/header_fields.h"
#include "common_stowraapi/platform/http/sink_writer.h"
#include "common_stowraapi/platform/http/source_reader.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Bytes to upload, shared by the transport that holds them and the transfers that send them.
class RequestBody {
 public:
  RequestBody(const unsigned char* data, std::size_t length)
      : bytes_(reinterpret_cast<const char*>(data), length) {}

  const char* data() const { return bytes_.data(); }
  std::size_t size() const { return bytes_.size(); }

 private:
  const std::string bytes_;
};

struct HttpRequest {
  static constexpr int kDefaultRedirectLimit = 20;
  static constexpr std::size_t kDefaultBodyCap = std::size_t{256} << 20;

  ovrant::utils::ovrant_ustring url;
  bool is_upload = false;
  std::shared_ptr<const RequestBody> body;  // null when empty
  std::shared_ptr<SourceReader> source;     // takes the place of body if not null
  std::shared_ptr<SinkWriter> sink;         // null: the reply's body stays in memory
  void* context = nullptr;                  // of the delegate, for the listener

  // Headers of the request itself win over those for its origin, and these over the common ones.
  ovrant::utils::StringMap headers;
  std::map<ovrant::utils::ovrant_ustring, ovrant::utils::StringMap> origin_headers;
  ovrant::utils::StringMap common_headers;

  std::chrono::milliseconds inactivity_timeout{0};  // must be above 0
  std::size_t body_cap = kDefaultBodyCap;
  int redirect_limit = kDefaultRedirectLimit;  // 0 makes a redirect the reply
  std::string ca_file;
  std::string proxy;
  std::string user_agent;
};

struct HttpReply {
  // True when a whole reply came. If not, only status and error are meaningful.
  bool received = false;
  TransferError error = TransferError::kNone;
  int status = 0;
  HeaderFields headers;
  BodyBuffer body;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_MESSAGE_H_
