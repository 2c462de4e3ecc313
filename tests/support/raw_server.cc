// SPDX-License-Identifier: MIT
#include "tests/support/raw_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <system_error>
#include <utility>

#include "tests/support/bystander.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

void Check(bool good) {
  if (!good) throw std::system_error(errno, std::generic_category(), "test server");
}

// Programs that a test starts do not inherit the descriptor.
void CloseOnExec(int descriptor) { Check(fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0); }

// Makes a write to a closed connection return an error instead of raising SIGPIPE.
void BlockBrokenPipeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// REQUIRES: `head` ends with an empty line.
void ParseHead(std::string_view head, RawRequest& request) {
  std::size_t line_end = head.find(kLineEnd);
  const std::string_view first = head.substr(0, line_end);
  const std::size_t space = first.find(' ');
  request.method = first.substr(0, space);
  request.target = first.substr(space + 1, first.rfind(' ') - space - 1);
  while (true) {
    head.remove_prefix(line_end + kLineEnd.size());
    line_end = head.find(kLineEnd);
    const std::string_view line = head.substr(0, line_end);
    if (line.empty()) return;
    const std::size_t colon = line.find(':');
    std::string_view value = line.substr(colon + 1);
    if (!value.empty() && value.front() == ' ') value.remove_prefix(1);
    request.headers.emplace_back(line.substr(0, colon), value);
  }
}

std::unique_ptr<SSL_CTX, OpensslDeleter> MakeTls(const Certificate& certificate) {
  std::unique_ptr<SSL_CTX, OpensslDeleter> tls(SSL_CTX_new(TLS_server_method()));
  Check(tls != nullptr && SSL_CTX_use_certificate(tls.get(), certificate.x509.get()) == 1 &&
        SSL_CTX_use_PrivateKey(tls.get(), certificate.key.get()) == 1);
  return tls;
}

}  // namespace

std::string RawRequest::Header(std::string_view name) const {
  std::string values;
  for (const auto& [header, value] : headers) {
    if (!EqualsIgnoringCase(header, name)) continue;
    if (!values.empty()) values += '|';
    values += value;
  }
  return values;
}

bool RawRequest::HasHeader(std::string_view name) const {
  for (const auto& header : headers) {
    if (EqualsIgnoringCase(header.first, name)) return true;
  }
  return false;
}

RawServer::RawServer(Handler handler) : RawServer(std::move(handler), Options()) {}

RawServer::RawServer(Handler handler, const Options& options)
    : handler_(std::move(handler)), reads_body_(options.reads_body), records_(options.records) {
  if (options.certificate != nullptr) tls_ = MakeTls(*options.certificate);
  Check(pipe(stop_pipe_.data()) == 0);
  for (const int end : stop_pipe_) CloseOnExec(end);
  Listen(options);
  acceptor_ = std::thread(&RawServer::Accept, this);
}

RawServer::~RawServer() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    for (const Client& client : clients_) {
      if (!client.ended) shutdown(client.socket, SHUT_RDWR);
    }
  }
  const char byte = 0;
  if (write(stop_pipe_[1], &byte, 1) != 1) std::abort();
  acceptor_.join();
  for (Client& client : clients_) client.thread.join();
  close(listener_);
  for (const int end : stop_pipe_) close(end);
}

std::string RawServer::Url(std::string_view target) const {
  return (tls_ ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_) +
         std::string(target);
}

std::vector<RawRequest> RawServer::requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

int RawServer::connections() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return connections_;
}

bool RawServer::WaitForRequests(std::size_t count) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, kPatience, [this, count] { return requests_.size() >= count; });
}

bool RawServer::WaitForConnections(int count) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, kPatience, [this, count] { return connections_ >= count; });
}

bool RawServer::WaitUntilOpen(int count) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, kPatience, [this, count] { return open_ == count; });
}

void RawServer::Listen(const Options& options) {
  listener_ = socket(AF_INET, SOCK_STREAM, 0);
  Check(listener_ >= 0);
  CloseOnExec(listener_);
  if (options.receive_buffer > 0) {
    Check(setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &options.receive_buffer,
                     sizeof(options.receive_buffer)) == 0);
  }
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = inet_addr(options.address);
  socklen_t length = sizeof(address);
  auto* const any_address = reinterpret_cast<sockaddr*>(&address);
  Check(bind(listener_, any_address, length) == 0);
  Check(listen(listener_, SOMAXCONN) == 0);
  Check(getsockname(listener_, any_address, &length) == 0);
  port_ = ntohs(address.sin_port);
}

void RawServer::Accept() {
  is_bystander = true;
  while (true) {
    std::array<pollfd, 2> polls = {{{listener_, POLLIN, 0}, {stop_socket(), POLLIN, 0}}};
    if (poll(polls.data(), polls.size(), -1) < 0 && errno != EINTR) return;
    if (polls[1].revents != 0) return;
    if (polls[0].revents == 0) continue;
    const int accepted = accept(listener_, nullptr, nullptr);
    if (accepted < 0) continue;
    CloseOnExec(accepted);
    const int on = 1;
    setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));

    JoinEnded();
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_) {
      close(accepted);
      return;
    }
    Client& client = clients_.emplace_back();
    client.socket = accepted;
    ++open_;
    const int index = connections_++;
    changed_.notify_all();
    client.thread = std::thread(&RawServer::Serve, this, std::ref(client), index);
  }
}

void RawServer::Serve(Client& client, int index) {
  is_bystander = true;
  BlockBrokenPipeSignal();
  {
    RawConnection connection(client.socket, tls_.get(), *this);
    while (!connection.is_closed()) {
      RawRequest request;
      request.connection = index;
      if (!ReadRequest(connection, request)) break;
      Record(request);
      handler_(request, connection);
    }
    connection.Close();
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  close(client.socket);
  client.ended = true;
  --open_;
  changed_.notify_all();
}

bool RawServer::ReadRequest(RawConnection& connection, RawRequest& request) const {
  std::string& pending = connection.pending_;
  std::size_t head_end = pending.find(kHeadEnd);
  while (head_end == std::string::npos) {
    if (!connection.Receive()) return false;
    head_end = pending.find(kHeadEnd);
  }
  head_end += kHeadEnd.size();
  ParseHead(std::string_view(pending).substr(0, head_end), request);
  pending.erase(0, head_end);
  if (!reads_body_) return true;

  const std::string length_text = request.Header("Content-Length");
  const std::size_t length = std::strtoul(length_text.c_str(), nullptr, 10);
  while (pending.size() < length) {
    if (!connection.Receive()) return false;
  }
  request.body = pending.substr(0, length);
  pending.erase(0, length);
  return true;
}

void RawServer::Record(const RawRequest& request) {
  if (!records_) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  requests_.push_back(request);
  changed_.notify_all();
}

// Called on the accepting thread. No other thread adds or removes clients.
void RawServer::JoinEnded() {
  std::list<Client> ended;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (auto client = clients_.begin(); client != clients_.end();) {
      const auto next = std::next(client);
      if (client->ended) ended.splice(ended.end(), clients_, client);
      client = next;
    }
  }
  for (Client& client : ended) client.thread.join();
}

RawConnection::RawConnection(int socket, SSL_CTX* tls, const RawServer& server)
    : socket_(socket), server_(server) {
  if (tls == nullptr) return;
  tls_.reset(SSL_new(tls));
  SSL_set_fd(tls_.get(), socket_);
  closed_ = SSL_accept(tls_.get()) != 1;
}

RawConnection::~RawConnection() = default;

bool RawConnection::Write(std::string_view bytes) {
  while (!bytes.empty() && !closed_) {
    const std::size_t step = std::min<std::size_t>(bytes.size(), 1U << 20);
    const auto written = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(step))
                              : send(socket_, bytes.data(), step, 0);
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return bytes.empty();
}

bool RawConnection::Drip(std::string_view bytes, std::chrono::milliseconds pause) {
  for (const char& byte : bytes) {
    pollfd stop = {server_.stop_socket(), POLLIN, 0};
    if (poll(&stop, 1, static_cast<int>(pause.count())) > 0) return false;
    if (!Write(std::string_view(&byte, 1))) return false;
  }
  return true;
}

void RawConnection::EndWriting() {
  if (closed_) return;
  closed_ = true;
  if (tls_) SSL_shutdown(tls_.get());
  shutdown(socket_, SHUT_WR);
}

void RawConnection::Close() {
  if (closed_) return;
  EndWriting();
  Stall();
}

void RawConnection::Cut() {
  closed_ = true;
  shutdown(socket_, SHUT_WR);
  Stall();
}

void RawConnection::Reset() {
  closed_ = true;
  // With a linger time of 0, the coming close sends a reset.
  const linger none = {1, 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof(none));
}

void RawConnection::Stall() {
  std::array<char, 4096> ignored;
  while (WaitUntilReadable() && recv(socket_, ignored.data(), ignored.size(), 0) > 0) {
  }
}

void RawConnection::StallWithoutReading() {
  pollfd stop = {server_.stop_socket(), POLLIN, 0};
  poll(&stop, 1, -1);
}

bool RawConnection::Read(std::string& bytes) {
  if (pending_.empty() && !Receive()) return false;
  bytes += pending_;
  pending_.clear();
  return true;
}

// Waits for bytes and appends them to `pending_`.
bool RawConnection::Receive() {
  std::array<char, 16384> buffer;
  if (closed_) return false;
  if ((!tls_ || SSL_pending(tls_.get()) == 0) && !WaitUntilReadable()) return false;
  const auto count = tls_ ? SSL_read(tls_.get(), buffer.data(), static_cast<int>(buffer.size()))
                          : recv(socket_, buffer.data(), buffer.size(), 0);
  if (count <= 0) return false;
  pending_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

// False when the server stops.
bool RawConnection::WaitUntilReadable() const {
  std::array<pollfd, 2> polls = {{{socket_, POLLIN, 0}, {server_.stop_socket(), POLLIN, 0}}};
  while (poll(polls.data(), polls.size(), -1) < 0) {
    if (errno != EINTR) return false;
  }
  return polls[1].revents == 0;
}

std::string Response(int status, std::string_view body, std::string_view headers) {
  return "HTTP/1.1 " + std::to_string(status) +
         " Text\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + std::string(headers) +
         "\r\n" + std::string(body);
}

RawServer::Handler Always(std::string response) {
  return [response = std::move(response)](const RawRequest&, RawConnection& connection) {
    connection.Write(response);
  };
}

RawServer::Handler AlwaysThenClose(std::string response) {
  return [response = std::move(response)](const RawRequest&, RawConnection& connection) {
    connection.Write(response);
    connection.Close();
  };
}

RawServer::Handler Silence() {
  return [](const RawRequest&, RawConnection& connection) { connection.Stall(); };
}

}  // namespace stowra_test
