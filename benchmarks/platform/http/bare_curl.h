// SPDX-License-Identifier: MIT
// Downloads with libcurl alone, as a yardstick.

#ifndef BENCHMARKS_PLATFORM_HTTP_BARE_CURL_H_
#define BENCHMARKS_PLATFORM_HTTP_BARE_CURL_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace stowra_bench {

struct CurlEasyDeleter {
  void operator()(void* easy) const;
};
struct CurlMultiDeleter {
  void operator()(void* multi) const;
};
using CurlEasy = std::unique_ptr<void, CurlEasyDeleter>;
using CurlMulti = std::unique_ptr<void, CurlMultiDeleter>;

// One easy handle that is set up once for one URL and reused.
class BareEasy {
 public:
  explicit BareEasy(const std::string& url);

  // Replaces `body` with the response's body. False unless the status is 200.
  bool Download(std::string& body);

 private:
  CurlEasy easy_;
};

// One multi handle that runs easy handles on the caller's thread. Each easy handle is set up once
// for one URL.
class BareMulti {
 public:
  BareMulti(const std::string& url, std::size_t handles);
  ~BareMulti();

  BareMulti(const BareMulti&) = delete;
  BareMulti& operator=(const BareMulti&) = delete;

  // Makes `count` downloads, one at a time on each handle. False unless each has status 200 and
  // `length` bytes.
  bool Download(std::size_t count, std::size_t length);

 private:
  struct Transfer {
    CurlEasy easy;
    std::string body;
  };

  void Start(Transfer& transfer);

  CurlMulti multi_;
  std::vector<std::unique_ptr<Transfer>> transfers_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_PLATFORM_HTTP_BARE_CURL_H_
