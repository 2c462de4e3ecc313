// SPDX-License-Identifier: MIT
#include "tests/multipart/http_reader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>

#include "tests/multipart/part.h"

namespace stowra_test {
namespace {

void AnswerWithParts(const httplib::Request& request, httplib::Response& response,
                     const httplib::ContentReader& read_content) {
  if (!request.is_multipart_form_data()) {
    response.status = 400;
    return;
  }
  Reading reading;
  const bool is_read = read_content(
      [&reading](const httplib::MultipartFormData& header) {
        Part part;
        part.name = header.name;
        part.file_name = header.filename;
        part.type = header.content_type;
        reading.parts.push_back(part);
        return true;
      },
      [&reading](const char* data, std::size_t length) {
        reading.parts.back().content.append(data, length);
        return true;
      });
  if (!is_read) return;  // the server has set the status
  response.set_content(Encode(reading), "application/octet-stream");
}

}  // namespace

HttpReader::HttpReader() {
  server_.set_keep_alive_max_count(std::numeric_limits<std::size_t>::max());
  server_.set_tcp_nodelay(true);
  server_.Post("/upload", AnswerWithParts);
  server_.Get("/ready", [](const httplib::Request&, httplib::Response&) {});
  port_ = server_.bind_to_any_port("127.0.0.1");
  EXPECT_GT(port_, 0);
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  // The server must be running before stop() works.
  EXPECT_TRUE(httplib::Client("127.0.0.1", port_).Get("/ready"));
}

HttpReader::~HttpReader() {
  server_.stop();
  thread_.join();
}

std::string HttpReader::Url() const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/upload";
}

}  // namespace stowra_test
