// A parser of multipart bodies behind a server.

#ifndef TESTS_MULTIPART_HTTP_READER_H_
#define TESTS_MULTIPART_HTTP_READER_H_

#include <httplib.h>

#include <string>
#include <thread>

namespace stowra_test {

// A server on 127.0.0.1, built on cpp-httplib. It answers a POST with the parts that cpp-httplib
// finds in its body, in their order, encoded as in part.h. Any status but 200 means that it was
// none that it can read.
class HttpReader {
 public:
  HttpReader();
  ~HttpReader();
  HttpReader(const HttpReader&) = delete;
  HttpReader& operator=(const HttpReader&) = delete;

  std::string Url() const;

 private:
  httplib::Server server_;
  int port_;
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_MULTIPART_HTTP_READER_H_
