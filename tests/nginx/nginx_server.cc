// SPDX-License-Identifier: MIT
#include "tests/nginx/nginx_server.h"

#include <arpa/inet.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <pwd.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

// Configuration() replaces the @WORDS@. nginx sends gzipped and SSI pages in chunks, because it
// does not know their length in advance. It writes an upload to a file and then proxies the request
// to itself for the answer.
constexpr const char* kConfiguration = R"(
@USER@
daemon off;
worker_processes 1;
pid @FOLDER@/nginx.pid;
lock_file @FOLDER@/nginx.lock;
error_log @FOLDER@/error.log;
events { worker_connections 64; }
http {
  client_body_temp_path @FOLDER@/uploads;
  proxy_temp_path @FOLDER@/proxy;
  fastcgi_temp_path @FOLDER@/fastcgi;
  uwsgi_temp_path @FOLDER@/uwsgi;
  scgi_temp_path @FOLDER@/scgi;
  log_format words '$request_method $uri $status $connection $connection_requests '
                   '$sent_http_content_length $sent_http_content_encoding '
                   '$sent_http_transfer_encoding $server_protocol';
  access_log @FOLDER@/access.log words;
  lingering_close off;
  default_type application/atom+xml;
  server {
    listen 127.0.0.1:@LISTEN@;
    @TLS@
    location /plain/ { alias @FOLDER@/pages/; }
    location /slow/ { alias @FOLDER@/pages/; limit_rate 200k; limit_rate_after 20k; }
    location /gzip/ { alias @FOLDER@/pages/; gzip on; gzip_types *; gzip_min_length 1; }
    location /chunked/ { alias @FOLDER@/pages/; ssi on; ssi_types *; }
    location /moved/ { rewrite ^/moved/(.*)$ /plain/$1 redirect; }
    location /upload {
      client_max_body_size 32m;
      client_body_in_file_only on;
      proxy_pass @SELF@/stored;
      proxy_method GET;
      proxy_pass_request_body off;
      proxy_set_header Content-Length "";
    }
    location /upload/small { client_max_body_size 1m; return 200 "stored"; }
    location /stored { access_log off; return 200 "stored"; }
  }
}
)";

void Replace(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

void WriteFile(const std::filesystem::path& file, std::string_view content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  EXPECT_TRUE(stream.flush()) << "cannot write " << file;
}

void WriteCertificate(const Certificate& certificate, const std::filesystem::path& file) {
  std::FILE* const stream = std::fopen(file.c_str(), "w");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(PEM_write_X509(stream, certificate.x509.get()), 1);
  EXPECT_EQ(
      PEM_write_PrivateKey(stream, certificate.key.get(), nullptr, nullptr, 0, nullptr, nullptr),
      1);
  EXPECT_EQ(std::fclose(stream), 0);
}

// nginx started by root would run its worker as nobody, who cannot read the folder.
std::string UserDirective() {
  if (::geteuid() != 0) return {};
  const passwd* const user = ::getpwuid(::geteuid());
  const group* const users = ::getgrgid(::getegid());
  EXPECT_TRUE(user != nullptr && users != nullptr);
  return std::string("user ") + user->pw_name + " " + users->gr_name + ";";
}

// Listens on a free port of 127.0.0.1 and stores it to `port`.
OwnedDescriptor Listen(int& port) {
  OwnedDescriptor listener(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  EXPECT_EQ(::bind(listener.number(), plain, length), 0);
  EXPECT_EQ(::listen(listener.number(), 64), 0);
  EXPECT_EQ(::getsockname(listener.number(), plain, &length), 0);
  port = ntohs(address.sin_port);
  return listener;
}

}  // namespace

NginxServer::NginxServer(const Certificate* certificate) : has_tls_(certificate != nullptr) {
  const std::string nginx = STOWRA_NGINX;
  EXPECT_NE(nginx, "") << "nginx is not installed; ./run installs it";
  if (nginx.empty()) return;
  std::filesystem::create_directory(Inside("pages"));
  if (has_tls_) WriteCertificate(*certificate, Inside("certificate.pem"));

  // nginx cannot report a port that the system chose. But for upgrades of its own binary it can
  // inherit a listening socket, whose descriptor the variable NGINX names. Clients that connect
  // early wait in the socket's queue. When nginx ends, the port is closed.
  const OwnedDescriptor listener = Listen(port_);
  WriteFile(Inside("nginx.conf"), Configuration());
  ChildProcess::Start start;
  start.program = nginx;
  start.arguments = {"-p", folder_.path().string(),     "-c", Inside("nginx.conf").string(),
                     "-e", Inside("error.log").string()};
  start.environment = {"NGINX=0;"};
  start.descriptors = {{listener.number(), STDIN_FILENO}};
  process_ = std::make_unique<ChildProcess>(start);
}

NginxServer::~NginxServer() {
  if (process_ == nullptr) return;
  process_->Signal(SIGTERM);  // SIGKILL would leave the worker running
  process_->Wait();
}

std::string NginxServer::Configuration() const {
  const std::string port = std::to_string(port_);
  const std::string pem = Inside("certificate.pem").string();
  std::string text = kConfiguration;
  Replace(text, "@LISTEN@", port + (has_tls_ ? " ssl http2" : ""));
  Replace(text, "@TLS@",
          has_tls_ ? "ssl_certificate " + pem + "; ssl_certificate_key " + pem + ";" : "");
  Replace(text, "@USER@", UserDirective());
  Replace(text, "@SELF@", Url(""));
  Replace(text, "@FOLDER@", folder_.path().string());
  return text;
}

void NginxServer::AddFile(const std::string& name, std::string_view content) const {
  WriteFile(Inside("pages") / name, content);
}

std::string NginxServer::Url(const std::string& path) const {
  return std::string(has_tls_ ? "https" : "http") + "://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<LoggedRequest> NginxServer::Stop() {
  std::vector<LoggedRequest> requests;
  if (process_ == nullptr) return requests;
  process_->Signal(SIGQUIT);
  EXPECT_EQ(process_->Wait(), 0) << ReadFile(Inside("error.log"));
  process_.reset();
  std::istringstream log(ReadFile(Inside("access.log")));
  for (LoggedRequest next; log >> next.method >> next.path >> next.status >> next.connection >>
                           next.connection_requests >> next.content_length >>
                           next.content_encoding >> next.transfer_encoding >> next.protocol;) {
    requests.push_back(next);
  }
  EXPECT_TRUE(log.eof());
  return requests;
}

std::vector<std::string> NginxServer::Uploads() const {
  std::vector<std::string> bodies;
  for (const std::filesystem::path& file : FilesIn(Inside("uploads"))) {
    bodies.push_back(ReadFile(file));
  }
  return bodies;
}

}  // namespace stowra_test
