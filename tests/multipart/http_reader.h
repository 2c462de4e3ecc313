// SPDX-License-Identifier: MIT
// A server that parses multipart bodies with cpp-httplib.

#ifndef TESTS_MULTIPART_HTTP_READER_H_
#define TESTS_MULTIPART_HTTP_READER_H_

#include <httplib.h>

#include <string>
#include <thread>

namespace stowra_test {

// Listens on 127.0.0.1. Answers a POST with the parts of its body in order, encoded as in part.h. A
// status other than 200 means that it could not read the body.
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
