// An nginx for one test.

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

// A request as nginx logs it; "-" stands for what its response does not have.
struct LoggedRequest {
  std::string method;
  std::string path;
  int status = 0;
  int connection = 0;           // the same number for all requests of one connection
  int connection_requests = 0;  // how many that connection has had, this one included
  std::string content_length;   // of the response, as the next three
  std::string content_encoding;
  std::string transfer_encoding;
  std::string protocol;  // of the request: HTTP/1.1 or HTTP/2.0
};

// Listens on 127.0.0.1 and a port of the system's choice; everything that it writes lies in a
// folder of its own. The test fails when nginx is missing.
//
//   /plain/FILE    a file of AddFile, with its length
//   /gzip/FILE     the same, packed while it is sent
//   /chunked/FILE  the same, of unknown length
//   /moved/FILE    leads to /plain/FILE
//   /slow/FILE     the same as /plain/FILE, 200 KB a second after the first 20 KB
//   /upload        takes what is posted, up to 32 MB; more than 1 MB at /upload/small is refused
class NginxServer {
 public:
  // With TLS, and HTTP/2 for who asks for it, if there is a certificate.
  explicit NginxServer(const Certificate* certificate = nullptr);
  ~NginxServer();
  NginxServer(const NginxServer&) = delete;
  NginxServer& operator=(const NginxServer&) = delete;

  void AddFile(const std::string& name, std::string_view content) const;

  std::string Url(const std::string& path) const;

  // Lets the requests under way end, and nginx with them. All of its requests, in order.
  std::vector<LoggedRequest> Stop();

  // The bodies that were posted, in order.
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
