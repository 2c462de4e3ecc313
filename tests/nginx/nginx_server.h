// SPDX-License-Identifier: MIT
// Runs nginx for one test.

#ifndef TESTS_NGINX_NGINX_SERVER_H_
#define TESTS_NGINX_NGINX_SERVER_H_

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/certificates.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {

// A request as nginx logs it. "-" stands for a header field that the response lacks.
struct LoggedRequest {
  std::string method;
  std::string path;
  int status = 0;
  int connection = 0;           // the connection's number
  int connection_requests = 0;  // requests on that connection, including this one
  std::string content_length;   // of the response, like the next two
  std::string content_encoding;
  std::string transfer_encoding;
  std::string protocol;  // of the request: HTTP/1.1 or HTTP/2.0
};

// Listens on 127.0.0.1, on a port that the system chooses. Writes only to a temporary folder. The
// test fails if nginx is missing.
//
//   /plain/FILE    Sends a file of AddFile with Content-Length.
//   /gzip/FILE     Sends the file gzipped on the fly.
//   /chunked/FILE  Sends the file with chunked encoding.
//   /moved/FILE    Redirects to /plain/FILE.
//   /slow/FILE     Like /plain/FILE, but sends 200 KB per second after the first 20 KB.
//   /upload        Accepts a POST of up to 32 MB.
//   /upload/small  Accepts a POST of up to 1 MB.
class NginxServer {
 public:
  // Offers TLS and HTTP/2 if there is a certificate.
  explicit NginxServer(const Certificate* certificate = nullptr);
  ~NginxServer();
  NginxServer(const NginxServer&) = delete;
  NginxServer& operator=(const NginxServer&) = delete;

  void AddFile(const std::string& name, std::string_view content) const;

  std::string Url(const std::string& path) const;

  // Lets current requests end, then stops nginx. Returns all requests in order.
  std::vector<LoggedRequest> Stop();

  // The uploaded bodies in order.
  std::vector<std::string> Uploads() const;

 private:
  std::string Configuration() const;
  std::filesystem::path Inside(const char* name) const { return folder_.path() / name; }

  const TemporaryFolder folder_;
  const bool has_tls_;
  int port_ = 0;
  std::unique_ptr<ChildProcess> process_;
};

}  // namespace stowra_test

#endif  // TESTS_NGINX_NGINX_SERVER_H_
