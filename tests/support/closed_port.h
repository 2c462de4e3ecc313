// SPDX-License-Identifier: MIT
// A port at which nobody listens.

#ifndef TESTS_SUPPORT_CLOSED_PORT_H_
#define TESTS_SUPPORT_CLOSED_PORT_H_

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <string>

#include "tests/support/child_process.h"

namespace stowra_test {

// Keeps a port of 127.0.0.1 from other programs and does not listen.
class ClosedPort {
 public:
  ClosedPort() {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* const any_address = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(socket_.number(), any_address, length), 0);
    EXPECT_EQ(getsockname(socket_.number(), any_address, &length), 0);
    port_ = ntohs(address.sin_port);
  }

  std::string Url(const std::string& target = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + target;
  }

 private:
  const OwnedDescriptor socket_{socket(AF_INET, SOCK_STREAM, 0)};
  int port_ = 0;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_CLOSED_PORT_H_
