// SPDX-License-Identifier: MIT
#include "benchmarks/platform/http/bare_curl.h"

#include <curl/curl.h>

namespace stowra_bench {

namespace {

constexpr long kStatusOk = 200;
constexpr long kConnectTimeout = 30000;  // ms
constexpr long kReceiveBufferSize = 64L << 10;

std::size_t AppendTo(char* data, std::size_t size, std::size_t count, void* body) {
  static_cast<std::string*>(body)->append(data, size * count);
  return size * count;
}

// Sends the same request as the library does.
CurlEasy MakeEasy(const std::string& url) {
  CurlEasy easy(curl_easy_init());
  curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy.get(), CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(easy.get(), CURLOPT_ACCEPT_ENCODING, "gzip");
  curl_easy_setopt(easy.get(), CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(easy.get(), CURLOPT_CONNECTTIMEOUT_MS, kConnectTimeout);
  curl_easy_setopt(easy.get(), CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy.get(), CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, AppendTo);
  return easy;
}

bool HasStatusOk(CURL* easy) {
  long status = 0;
  curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
  return status == kStatusOk;
}

}  // namespace

void CurlEasyDeleter::operator()(void* easy) const { curl_easy_cleanup(easy); }
void CurlMultiDeleter::operator()(void* multi) const { curl_multi_cleanup(multi); }

BareEasy::BareEasy(const std::string& url) : easy_(MakeEasy(url)) {}

bool BareEasy::Download(std::string& body) {
  body.clear();
  curl_easy_setopt(easy_.get(), CURLOPT_WRITEDATA, &body);
  return curl_easy_perform(easy_.get()) == CURLE_OK && HasStatusOk(easy_.get());
}

BareMulti::BareMulti(const std::string& url, std::size_t handles) : multi_(curl_multi_init()) {
  for (std::size_t i = 0; i < handles; ++i) {
    transfers_.push_back(std::make_unique<Transfer>());
    Transfer& transfer = *transfers_.back();
    transfer.easy = MakeEasy(url);
    curl_easy_setopt(transfer.easy.get(), CURLOPT_WRITEDATA, &transfer.body);
    curl_easy_setopt(transfer.easy.get(), CURLOPT_PRIVATE, &transfer);
  }
}

BareMulti::~BareMulti() = default;

bool BareMulti::Download(std::size_t count, std::size_t length) {
  std::size_t started = 0;
  std::size_t ended = 0;
  bool good = true;
  while (started < count && started < transfers_.size()) Start(*transfers_[started++]);
  while (ended < count) {
    int running = 0;
    if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) return false;
    int left = 0;
    bool any_started = false;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
      CURL* const easy = message->easy_handle;
      Transfer* transfer = nullptr;
      curl_easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
      good = good && message->data.result == CURLE_OK && HasStatusOk(easy) &&
             transfer->body.size() == length;
      curl_multi_remove_handle(multi_.get(), easy);
      ++ended;
      if (started == count) continue;
      Start(*transfer);
      ++started;
      any_started = true;
    }
    if (ended < count && !any_started) curl_multi_poll(multi_.get(), nullptr, 0, 1000, nullptr);
  }
  return good;
}

void BareMulti::Start(Transfer& transfer) {
  transfer.body.clear();
  curl_multi_add_handle(multi_.get(), transfer.easy.get());
}

}  // namespace stowra_bench
