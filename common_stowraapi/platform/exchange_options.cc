#include "common_stowraapi/platform/exchange_options.h"

#include <curl/curl.h>
#include <fcntl.h>

#include <new>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/header_text.h"
#include "common_stowraapi/platform/http_exchange.h"

namespace ovrant::internet {

static_assert(kErrorBufferSize >= CURL_ERROR_SIZE);

namespace {

constexpr char kSchemes[] = "http,https";
constexpr long kReceiveBufferSize = 64L << 10;

HttpExchange& ExchangeAt(void* exchange) { return *static_cast<HttpExchange*>(exchange); }

std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* exchange) {
  const std::size_t length = size * count;
  return ExchangeAt(exchange).OnHeaderLine(std::string_view(data, length)) ? length : 0;
}

std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* exchange) {
  const std::size_t length = size * count;
  if (length == 0) return 0;
  return ExchangeAt(exchange).OnBody(data, length) ? length : 0;
}

int OnConnected(void* exchange, char* /*remote_ip*/, char* /*local_ip*/, int /*remote_port*/,
                int /*local_port*/) {
  return ExchangeAt(exchange).OnConnected() ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

int OnProgress(void* exchange, curl_off_t /*to_receive*/, curl_off_t /*received*/,
               curl_off_t /*to_send*/, curl_off_t sent) {
  ExchangeAt(exchange).OnSent(static_cast<std::size_t>(sent));
  return 0;
}

// A program that the host starts does not inherit the connection.
int OnSocket(void* /*client*/, curl_socket_t socket, curlsocktype /*purpose*/) {
  fcntl(socket, F_SETFD, FD_CLOEXEC);
  return CURL_SOCKOPT_OK;
}

// Sets options one after the other and remembers the first that failed.
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

// The transport frames the body itself.
bool IsOwnHeader(std::string_view name) {
  return EqualsIgnoringCase(name, "Content-Length") ||
         EqualsIgnoringCase(name, "Transfer-Encoding");
}

const char* AppendHeader(const std::string& name, const std::string& value, HeaderList& list) {
  if (!IsHeaderName(name) || !IsHeaderValue(value)) return "a request header cannot be sent";
  // libcurl's spelling of a header without a value.
  AppendHeaderLine((value.empty() ? name + ";" : name + ": " + value).c_str(), list);
  return nullptr;
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
  // What libcurl would add by itself is taken out by a name without a value.
  if (!has_encoding) AppendHeaderLine("Accept-Encoding: gzip", list);
  if (request.is_upload && !has_type) AppendHeaderLine("Content-Type:", list);
  if (request.is_upload && !has_expect) AppendHeaderLine("Expect:", list);
  return nullptr;
}

void SetSafety(const HttpRequest& request, EasyOptions& options) {
  options.Set(CURLOPT_PROTOCOLS_STR, kSchemes);
  options.Set(CURLOPT_REDIR_PROTOCOLS_STR, kSchemes);
  options.Set(CURLOPT_FOLLOWLOCATION, request.redirect_limit > 0 ? 1L : 0L);
  options.Set(CURLOPT_MAXREDIRS, static_cast<long>(request.redirect_limit));
  options.Set(CURLOPT_HTTP09_ALLOWED, 0L);
  options.Set(CURLOPT_SSL_VERIFYPEER, 1L);
  options.Set(CURLOPT_SSL_VERIFYHOST, 2L);
  options.Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  options.SetUnlessEmpty(CURLOPT_CAINFO, request.ca_file);
}

void SetConnection(const HttpRequest& request, EasyOptions& options) {
  options.Set(CURLOPT_NOSIGNAL, 1L);
  // A transfer that is dropped while a name is looked up does not wait for the look-up's thread.
  options.Set(CURLOPT_QUICK_EXIT, 1L);
  options.Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.inactivity_timeout.count()));
  options.Set(CURLOPT_TCP_KEEPALIVE, 1L);
  options.Set(CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  options.Set(CURLOPT_SOCKOPTFUNCTION, OnSocket);
  options.SetUnlessEmpty(CURLOPT_PROXY, request.proxy);
}

void SetBody(const HttpRequest& request, EasyOptions& options) {
  if (!request.is_upload) {
    options.Set(CURLOPT_HTTPGET, 1L);
    return;
  }
  options.Set(CURLOPT_POST, 1L);
  options.Set(CURLOPT_POSTFIELDS, request.body ? request.body->data() : "");
  options.Set(CURLOPT_POSTFIELDSIZE_LARGE,
              static_cast<curl_off_t>(request.body ? request.body->size() : 0));
}

void SetCallbacks(HttpExchange& exchange, bool wants_upload_progress, EasyOptions& options) {
  void* const client = &exchange;
  options.Set(CURLOPT_HEADERFUNCTION, OnHeader);
  options.Set(CURLOPT_HEADERDATA, client);
  options.Set(CURLOPT_WRITEFUNCTION, OnBody);
  options.Set(CURLOPT_WRITEDATA, client);
  options.Set(CURLOPT_PREREQFUNCTION, OnConnected);
  options.Set(CURLOPT_PREREQDATA, client);
  options.Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  options.Set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
  if (wants_upload_progress) {
    options.Set(CURLOPT_NOPROGRESS, 0L);
    options.Set(CURLOPT_XFERINFOFUNCTION, OnProgress);
    options.Set(CURLOPT_XFERINFODATA, client);
  }
}

}  // namespace

const char* SetExchangeOptions(const HttpRequest& request, HttpExchange& exchange,
                               bool wants_upload_progress,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers) {
  const std::string url = request.url.utf8();
  if (!HasScheme(url) || url.find('\0') != std::string::npos) return "not an http or https URL";
  if (const char* why = MakeHeaderList(request, headers)) return why;

  EasyOptions options(easy);
  options.Set(CURLOPT_URL, url.c_str());
  options.Set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(headers.get()));
  options.Set(CURLOPT_ERRORBUFFER, error_buffer.data());
  SetSafety(request, options);
  SetConnection(request, options);
  SetBody(request, options);
  SetCallbacks(exchange, wants_upload_progress && request.is_upload, options);
  if (options.result() == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
  if (options.result() == CURLE_OK) return nullptr;
  return curl_easy_strerror(options.result());
}

}  // namespace ovrant::internet
