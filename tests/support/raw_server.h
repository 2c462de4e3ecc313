// A server whose every byte the test decides.

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

// A request as it came over the wire.
struct RawRequest {
  std::string method;
  std::string target;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  int connection = 0;  // in order of arrival, from 0

  // The values of every header of that name, whatever its letter case, joined by "|".
  std::string Header(std::string_view name) const;
  bool HasHeader(std::string_view name) const;
};

class RawServer;

// The server's end of a connection, for the handler of a request that came over it.
class RawConnection {
 public:
  RawConnection(int socket, SSL_CTX* tls, const RawServer& server);
  ~RawConnection();

  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  // False once the client has gone or the server stops.
  bool Write(std::string_view bytes);

  // One byte at a time, with a pause before each.
  bool Drip(std::string_view bytes, std::chrono::milliseconds pause);

  // Ends the server's direction; Close also waits until the client has closed, too.
  void EndWriting();
  void Close();

  // Ends the server's direction below TLS, whose own end is not announced; then as Close.
  void Cut();

  // Ends the connection so that the client sees a reset.
  void Reset();

  // Says nothing until the client has closed or the server stops.
  void Stall();

  // The same, and takes nothing of what the client may still send.
  void StallWithoutReading();

  // Whether the handler has ended the connection.
  bool is_closed() const { return closed_; }

  // Appends the next bytes; false at the end of the client's direction or when the server stops.
  bool Read(std::string& bytes);

 private:
  friend class RawServer;

  bool Receive();
  bool WaitUntilReadable() const;

  const int socket_;
  const RawServer& server_;
  std::unique_ptr<SSL, OpensslDeleter> tls_;
  std::string pending_;  // has been read, and belongs to what comes after the last request
  bool closed_ = false;
};

// Listens on 127.0.0.1 and a port of the system's choice. Reads each request whole and hands it to
// the handler, on the connection's own thread; a connection stays open between requests unless the
// handler ends it. The destructor ends every connection and waits for their handlers.
class RawServer {
 public:
  using Handler = std::function<void(const RawRequest&, RawConnection&)>;

  struct Options {
    const Certificate* certificate = nullptr;  // TLS if given
    bool reads_body = true;                    // false: the handler is called after the headers
    int receive_buffer = 0;                    // bytes; 0: the system's choice
    bool records = true;                       // false: requests() stays empty
  };

  explicit RawServer(Handler handler);
  RawServer(Handler handler, const Options& options);
  ~RawServer();

  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  int port() const { return port_; }

  // "http://127.0.0.1:port" and `target`; https with a certificate.
  std::string Url(std::string_view target = "/") const;

  std::vector<RawRequest> requests() const;
  int connections() const;

  // Whether at least `count` requests, or connections, have come within kPatience.
  bool WaitForRequests(std::size_t count) const;
  bool WaitForConnections(int count) const;

  // Whether no connection is open any more within kPatience.
  bool WaitUntilUnused() const { return WaitUntilOpen(0); }

  // Whether `count` connections are open within kPatience.
  bool WaitUntilOpen(int count) const;

 private:
  friend class RawConnection;

  struct Client {
    int socket;
    std::thread thread;
    bool ended = false;
  };

  void Listen(int receive_buffer);
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

// A whole response; `headers` are further lines, each with its line end.
std::string Response(int status, std::string_view body, std::string_view headers = "");

// Handlers that answer every request with the same bytes, and keep the connection or close it.
RawServer::Handler Always(std::string response);
RawServer::Handler AlwaysThenClose(std::string response);

// A handler that answers nothing.
RawServer::Handler Silence();

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_RAW_SERVER_H_
