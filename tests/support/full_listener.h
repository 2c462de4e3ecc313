// SPDX-License-Identifier: MIT
// An open port to which no client can connect.

#ifndef TESTS_SUPPORT_FULL_LISTENER_H_
#define TESTS_SUPPORT_FULL_LISTENER_H_

#include <string>
#include <vector>

namespace stowra_test {

// Accepts nothing and fills its own queue, so further clients wait.
class FullListener {
 public:
  // Listens on an address of this machine. With port 0 the system chooses one.
  explicit FullListener(const char* address = "127.0.0.1", int port = 0);
  ~FullListener();

  FullListener(const FullListener&) = delete;
  FullListener& operator=(const FullListener&) = delete;

  // Of a listener on 127.0.0.1.
  std::string Url() const;

 private:
  int port_ = 0;
  std::vector<int> sockets_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_FULL_LISTENER_H_
