// SPDX-License-Identifier: MIT
// A server for one request.

#ifndef BENCHMARKS_SUPPORT_ONE_REPLY_SERVER_H_
#define BENCHMARKS_SUPPORT_ONE_REPLY_SERVER_H_

#include <string>
#include <thread>

namespace stowra_bench {

// Listens on 127.0.0.1, on a port that the system chooses. Answers the first request with status
// 200 and a JSON body. Throws std::system_error if it cannot listen.
class OneReplyServer {
 public:
  explicit OneReplyServer(std::string body);

  // Waits until the reply is sent. Stops waiting for a request that has not come.
  ~OneReplyServer();

  OneReplyServer(const OneReplyServer&) = delete;
  OneReplyServer& operator=(const OneReplyServer&) = delete;

  std::string Url() const;

 private:
  void Serve() const;

  const std::string body_;
  const int listener_;
  std::thread thread_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_SUPPORT_ONE_REPLY_SERVER_H_
