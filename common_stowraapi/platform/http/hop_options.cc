// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/hop_options.h"

#include <curl/curl.h>

#include <new>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

static_assert(kErrorBufferSize >= CURL_ERROR_SIZE);

namespace {

constexpr char kSchemes[] = "http,https";
constexpr char kOfferedEncoding[] = "Accept-Encoding: gzip";

constexpr long kReceiveBufferSize = 64L << 10;

// Sets options in turn and remembers the first failure.
class EasyOptions {
 public:
  explicit EasyOptions(CURL* easy) : easy_(easy) {}

  template <typename T>
  void Set(CURLoption option, T value) {
    if (result_ == CURLE_OK) result_ = curl_easy_setopt(easy_, option, value);
  }
  void SetUnlessEmpty(CURLoption option, const std::string& value) {
    if (!value.empty()) Set(option, value.c_str());
  }

  CURLcode result() const { return result_; }

 private:
  CURL* const easy_;
  CURLcode result_ = CURLE_OK;
};

bool HasScheme(std::string_view url) {
  return StartsWithIgnoringCase(url, "http://") || StartsWithIgnoringCase(url, "https://");
}

// The transport sets these headers itself.
bool IsOwnHeader(std::string_view name) {
  return EqualsIgnoringCase(name, "Content-Length") ||
         EqualsIgnoringCase(name, "Transfer-Encoding");
}

Failure AppendHeader(const std::string& name, const std::string& value, HeaderList& list) {
  if (!IsHeaderName(name) || !IsHeaderValue(value)) {
    return {TransferError::kBadUrl, "a request header cannot be sent"};
  }
  // libcurl sends "Name;" as a header without a value. "Name:" would remove the header.
  const bool is_empty = TrimHeaderText(value).empty();
  AppendHeaderLine((is_empty ? name + ";" : name + ": " + value).c_str(), list);
  return kNoFailure;
}

Failure MakeHeaderList(const HttpRequest& settings, const HopRequest& hop, HeaderList& list) {
  bool has_encoding = false;
  bool has_type = false;
  bool has_expect = false;
  bool has_agent = false;
  for (const auto& [name_text, value] : hop.headers) {
    const std::string name = name_text.utf8();
    if (IsOwnHeader(name)) continue;
    has_encoding = has_encoding || EqualsIgnoringCase(name, "Accept-Encoding");
    has_type = has_type || EqualsIgnoringCase(name, "Content-Type");
    has_expect = has_expect || EqualsIgnoringCase(name, "Expect");
    has_agent = has_agent || EqualsIgnoringCase(name, "User-Agent");
    if (const Failure failure = AppendHeader(name, value.utf8(), list)) return failure;
  }
  if (!has_agent && !settings.user_agent.empty()) {
    if (const Failure failure = AppendHeader("User-Agent", settings.user_agent, list)) {
      return failure;
    }
  }
  // A name without a value keeps libcurl from adding that header.
  if (!has_encoding) AppendHeaderLine(kOfferedEncoding, list);
  if (hop.is_post && !has_type) AppendHeaderLine("Content-Type:", list);
  if (hop.is_post && !has_expect) AppendHeaderLine("Expect:", list);
  return kNoFailure;
}

void SetSafety(EasyOptions& options) {
  options.Set(CURLOPT_PROTOCOLS_STR, kSchemes);
  options.Set(CURLOPT_HTTP09_ALLOWED, 0L);
  options.Set(CURLOPT_SSL_VERIFYPEER, 1L);
  options.Set(CURLOPT_SSL_VERIFYHOST, 2L);
  options.Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
}

void SetConnection(const HttpRequest& settings, const HopRequest& hop, EasyOptions& options) {
  options.Set(CURLOPT_NOSIGNAL, 1L);
  // Dropping a transfer does not wait for the thread that looks up its name.
  options.Set(CURLOPT_QUICK_EXIT, 1L);
  options.Set(CURLOPT_TCP_KEEPALIVE, 1L);
  options.Set(CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  options.Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  options.Set(CURLOPT_FRESH_CONNECT, hop.needs_fresh_connection ? 1L : 0L);
  options.Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings.inactivity_timeout.count()));
  options.SetUnlessEmpty(CURLOPT_CAINFO, settings.ca_file);
  if (settings.proxy.empty()) return;
  options.Set(CURLOPT_PROXY, settings.proxy.c_str());
  // The environment's exceptions belong to the environment's proxies.
  options.Set(CURLOPT_NOPROXY, "");
}

// ReplyDecoder follows redirects and decodes bodies itself.
void SetReply(EasyOptions& options) {
  options.Set(CURLOPT_FOLLOWLOCATION, 0L);
  options.Set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
  options.Set(CURLOPT_HTTP_TRANSFER_DECODING, 0L);
}

// The body of a source comes from the callbacks, unless it is empty.
void SetBody(const HopRequest& hop, EasyOptions& options) {
  if (!hop.is_post) return;
  options.Set(CURLOPT_POST, 1L);
  if (hop.source && hop.source->length() != 0U) {
    const auto length = hop.source->length();
    options.Set(CURLOPT_POSTFIELDSIZE_LARGE, length ? static_cast<curl_off_t>(*length) : -1);
    return;
  }
  options.Set(CURLOPT_POSTFIELDS, hop.body ? hop.body->data() : "");
  options.Set(CURLOPT_POSTFIELDSIZE_LARGE,
              static_cast<curl_off_t>(hop.body ? hop.body->size() : 0));
}

}  // namespace

Failure SetHopOptions(const HttpRequest& settings, const HopRequest& hop,
                      std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                      HeaderList& headers) {
  if (!HasScheme(hop.url) || hop.url.find('\0') != std::string::npos) {
    return {TransferError::kBadUrl, "not an http or https URL"};
  }
  if (const Failure failure = MakeHeaderList(settings, hop, headers)) return failure;

  EasyOptions options(easy);
  options.Set(CURLOPT_URL, hop.url.c_str());
  options.Set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(headers.get()));
  options.Set(CURLOPT_ERRORBUFFER, error_buffer.data());
  SetSafety(options);
  SetConnection(settings, hop, options);
  SetReply(options);
  SetBody(hop, options);
  if (options.result() == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
  if (options.result() == CURLE_OK) return kNoFailure;
  return {TransferError::kBadUrl, curl_easy_strerror(options.result())};
}

}  // namespace ovrant::internet
