// SPDX-License-Identifier: MIT
// What the servers of several tests do.

#ifndef TESTS_PLATFORM_HTTP_HANDLERS_H_
#define TESTS_PLATFORM_HTTP_HANDLERS_H_

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/event.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Takes the headers of a request, and little of its body.
inline const RawServer::Options kUnread = {nullptr, false, 4096};

inline constexpr char kGzipHeader[] = "Content-Encoding: gzip\r\n";

// Answers with the request's body.
inline void Echo(const RawRequest& request, RawConnection& connection) {
  connection.Write(Response(200, request.body));
}

// Answers "/" with `first` and every other target with `next`.
inline RawServer::Handler FirstThen(std::string first, std::string next) {
  return [=](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/" ? first : next);
  };
}

// Answers when the event has come.
inline RawServer::Handler AnswerAfter(Event& event, std::string response) {
  return [&event, response = std::move(response)](const RawRequest&, RawConnection& connection) {
    EXPECT_TRUE(event.Wait());
    connection.Write(response);
  };
}

// Answers and reads nothing more. For servers with kUnread.
inline RawServer::Handler AnswerUnread(std::string response) {
  return [=](const RawRequest&, RawConnection& connection) {
    connection.Write(response);
    connection.StallWithoutReading();
  };
}

// Writes `head`, and then `piece` until the client has had enough.
inline RawServer::Handler Endless(std::string head, std::string piece = std::string(1 << 16, 'x')) {
  return [=](const RawRequest&, RawConnection& connection) {
    connection.Write(head);
    while (connection.Write(piece)) {
    }
  };
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_HANDLERS_H_
