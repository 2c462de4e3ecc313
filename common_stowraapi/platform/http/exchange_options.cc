#include "common_stowraapi/platform/http/exchange_options.h"

#include <curl/curl.h>
#include <fcntl.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

static_assert(kErrorBufferSize >= CURL_ERROR_SIZE);

namespace {

constexpr char kSchemes[] = "http,https";
constexpr char kOfferedEncoding[] = "Accept-Encoding: gzip";

// The private pointer of a handle on which PrepareForExchange has set the common options.
constexpr char kPrepared[] = "prepared";

constexpr long kReceiveBufferSize = 64L << 10;

// Programs that the host starts must not inherit the connection.
int OnSocket(void* /*client*/, curl_socket_t socket, curlsocktype /*purpose*/) {
  fcntl(socket, F_SETFD, FD_CLOEXEC);
  return CURL_SOCKOPT_OK;
}

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

const char* AppendHeader(const std::string& name, const std::string& value, HeaderList& list) {
  if (!IsHeaderName(name) || !IsHeaderValue(value)) return "a request header cannot be sent";
  // libcurl sends "Name;" as a header without a value. "Name:" would remove the header.
  const bool is_empty = TrimHeaderText(value).empty();
  AppendHeaderLine((is_empty ? name + ";" : name + ": " + value).c_str(), list);
  return nullptr;
}

// The header lines of a download with default headers.
curl_slist* PlainHeaders() {
  static const HeaderList* const list = [] {
    auto made = std::make_unique<HeaderList>();
    AppendHeaderLine(kOfferedEncoding, *made);
    return made.release();
  }();
  return static_cast<curl_slist*>(list->get());
}

bool IsPlain(const HttpRequest& request) {
  return request.headers.empty() && request.user_agent.empty() && !request.is_upload;
}

const char* MakeHeaderList(const HttpRequest& request, HeaderList& list) {
  bool has_encoding = false;
  bool has_type = false;
  bool has_expect = false;
  bool has_agent = false;
  for (const auto& [name_text, value] : request.headers) {
    const std::string name = name_text.utf8();
    if (IsOwnHeader(name)) continue;
    has_encoding = has_encoding || EqualsIgnoringCase(name, "Accept-Encoding");
    has_type = has_type || EqualsIgnoringCase(name, "Content-Type");
    has_expect = has_expect || EqualsIgnoringCase(name, "Expect");
    has_agent = has_agent || EqualsIgnoringCase(name, "User-Agent");
    if (const char* why = AppendHeader(name, value.utf8(), list)) return why;
  }
  if (!has_agent && !request.user_agent.empty()) {
    if (const char* why = AppendHeader("User-Agent", request.user_agent, list)) return why;
  }
  // A name without a value keeps libcurl from adding that header.
  if (!has_encoding) AppendHeaderLine(kOfferedEncoding, list);
  if (request.is_upload && !has_type) AppendHeaderLine("Content-Type:", list);
  if (request.is_upload && !has_expect) AppendHeaderLine("Expect:", list);
  return nullptr;
}

void SetSafety(EasyOptions& options) {
  options.Set(CURLOPT_PROTOCOLS_STR, kSchemes);
  options.Set(CURLOPT_REDIR_PROTOCOLS_STR, kSchemes);
  options.Set(CURLOPT_HTTP09_ALLOWED, 0L);
  options.Set(CURLOPT_SSL_VERIFYPEER, 1L);
  options.Set(CURLOPT_SSL_VERIFYHOST, 2L);
  options.Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
}

void SetConnection(EasyOptions& options) {
  options.Set(CURLOPT_NOSIGNAL, 1L);
  // Dropping a transfer does not wait for the thread that looks up its name.
  options.Set(CURLOPT_QUICK_EXIT, 1L);
  options.Set(CURLOPT_TCP_KEEPALIVE, 1L);
  options.Set(CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  options.Set(CURLOPT_SOCKOPTFUNCTION, OnSocket);
  options.Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  options.Set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
}

void SetDefaults(const HttpRequest& request, EasyOptions& options) {
  options.Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.inactivity_timeout.count()));
  options.Set(CURLOPT_FOLLOWLOCATION, request.redirect_limit > 0 ? 1L : 0L);
  options.Set(CURLOPT_MAXREDIRS, static_cast<long>(request.redirect_limit));
  options.SetUnlessEmpty(CURLOPT_CAINFO, request.ca_file);
  options.SetUnlessEmpty(CURLOPT_PROXY, request.proxy);
}

// A prepared handle makes a GET by default.
void SetBody(const HttpRequest& request, EasyOptions& options) {
  if (!request.is_upload) return;
  options.Set(CURLOPT_POST, 1L);
  options.Set(CURLOPT_HTTP_TRANSFER_DECODING, 0L);
  options.Set(CURLOPT_POSTFIELDS, request.body ? request.body->data() : "");
  options.Set(CURLOPT_POSTFIELDSIZE_LARGE,
              static_cast<curl_off_t>(request.body ? request.body->size() : 0));
}

const char* WhyNotSet(const EasyOptions& options) {
  if (options.result() == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
  return options.result() == CURLE_OK ? nullptr : curl_easy_strerror(options.result());
}

}  // namespace

const char* SetExchangeOptions(const HttpRequest& request,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers) {
  const std::string url = request.url.utf8();
  if (!HasScheme(url) || url.find('\0') != std::string::npos) return "not an http or https URL";
  curl_slist* lines = nullptr;
  if (IsPlain(request)) {
    lines = PlainHeaders();
  } else {
    if (const char* why = MakeHeaderList(request, headers)) return why;
    lines = static_cast<curl_slist*>(headers.get());
  }
  if (const char* why = PrepareForExchange(easy)) return why;

  EasyOptions options(easy);
  options.Set(CURLOPT_URL, url.c_str());
  options.Set(CURLOPT_HTTPHEADER, lines);
  options.Set(CURLOPT_ERRORBUFFER, error_buffer.data());
  SetDefaults(request, options);
  SetBody(request, options);
  return WhyNotSet(options);
}

const char* PrepareForExchange(void* easy) {
  const char* mark = nullptr;
  curl_easy_getinfo(easy, CURLINFO_PRIVATE, &mark);
  if (mark == kPrepared) return nullptr;
  EasyOptions options(easy);
  SetSafety(options);
  SetConnection(options);
  options.Set(CURLOPT_PRIVATE, kPrepared);
  return WhyNotSet(options);
}

bool LeavesChunksHere(const HttpRequest& request) { return request.is_upload; }

bool ReleaseFromExchange(const HttpRequest& request, void* easy) {
  EasyOptions options(easy);
  options.Set(CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
  options.Set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
  options.Set(CURLOPT_NOPROGRESS, 1L);
  return options.result() == CURLE_OK && !request.is_upload && request.ca_file.empty() &&
         request.proxy.empty();
}

}  // namespace ovrant::internet
