// SPDX-License-Identifier: MIT
// An HTTP server whose every byte the test chooses.

#ifndef TESTS_SUPPORT_RAW_SERVER_H_
#define TESTS_SUPPORT_RAW_SERVER_H_

#include <openssl/ssl.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/certificates.h"

namespace stowra_test {

// A request as it was received.
struct RawRequest {
  std::string method;
  std::string target;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  int connection = 0;  // in order of arrival, from 0

  // The values of all headers of that name in any letter case, joined by "|".
  std::string Header(std::string_view name) const;
  bool HasHeader(std::string_view name) const;
};

class RawServer;

// The server's end of a connection. A request's handler uses it to answer.
class RawConnection {
 public:
  RawConnection(int socket, SSL_CTX* tls, const RawServer& server);
  ~RawConnection();

  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  // False if the connection has ended or the server stops.
  bool Write(std::string_view bytes);

  // The same, one byte at a time with a pause before each.
  bool Drip(std::string_view bytes, std::chrono::milliseconds pause);

  // Ends the server's direction. Close also waits until the client closes or the server stops.
  void EndWriting();
  void Close();

  // Like Close, but without TLS's close_notify.
  void Cut();

  // Ends the connection so that the client sees a reset.
  void Reset();

  // Sends nothing and discards what arrives, until the client closes or the server stops.
  void Stall();

  // Sends and reads nothing until the server stops.
  void StallWithoutReading();

  // Whether the handler has ended the connection.
  bool is_closed() const { return closed_; }

  // Waits for bytes and appends them. False if the client closes its direction or the server stops.
  bool Read(std::string& bytes);

 private:
  friend class RawServer;

  bool Receive();
  bool WaitUntilReadable() const;

  const int socket_;
  const RawServer& server_;
  std::unique_ptr<SSL, OpensslDeleter> tls_;
  std::string pending_;  // received after the last request
  bool closed_ = false;
};

// Listens on a port of this machine that the system chooses. Each connection has a thread, which
// reads whole requests and calls the handler. A connection stays open between requests unless the
// handler ends it. The destructor ends all connections and waits for their handlers.
class RawServer {
 public:
  using Handler = std::function<void(const RawRequest&, RawConnection&)>;

  struct Options {
    const Certificate* certificate = nullptr;  // TLS if given
    bool reads_body = true;                    // false: the handler is called after the headers
    int receive_buffer = 0;                    // bytes; 0: the system's default
    bool records = true;                       // false: requests() stays empty
    const char* address = "127.0.0.1";         // to listen on, another one of this machine
  };

  explicit RawServer(Handler handler);
  RawServer(Handler handler, const Options& options);
  ~RawServer();

  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  int port() const { return port_; }

  // "http://127.0.0.1:port" and `target`, or https with a certificate. Not for another address.
  std::string Url(std::string_view target = "/") const;

  std::vector<RawRequest> requests() const;
  int connections() const;

  // Waits for at least `count` requests or connections. False after kPatience.
  bool WaitForRequests(std::size_t count) const;
  bool WaitForConnections(int count) const;

  // Waits until exactly `count` connections are open, or none. False after kPatience.
  bool WaitUntilOpen(int count) const;
  bool WaitUntilUnused() const { return WaitUntilOpen(0); }

 private:
  friend class RawConnection;

  struct Client {
    int socket;
    std::thread thread;
    bool ended = false;
  };

  void Listen(const Options& options);
  void Accept();
  void Serve(Client& client, int index);
  bool ReadRequest(RawConnection& connection, RawRequest& request) const;
  void Record(const RawRequest& request);
  void JoinEnded();
  int stop_socket() const { return stop_pipe_[0]; }

  const Handler handler_;
  const bool reads_body_;
  const bool records_;
  std::unique_ptr<SSL_CTX, OpensslDeleter> tls_;
  int listener_ = -1;
  int port_ = 0;
  std::array<int, 2> stop_pipe_;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool stopping_ = false;
  int connections_ = 0;
  int open_ = 0;
  std::list<Client> clients_;
  std::vector<RawRequest> requests_;

  std::thread acceptor_;
};

// A whole response with Content-Length. `headers` are further lines, each with its line end.
std::string Response(int status, std::string_view body, std::string_view headers = "");

// Handlers that answer every request with the same bytes. The second one then closes.
RawServer::Handler Always(std::string response);
RawServer::Handler AlwaysThenClose(std::string response);

// A handler that never answers.
RawServer::Handler Silence();

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_RAW_SERVER_H_
