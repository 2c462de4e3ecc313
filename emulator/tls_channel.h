// SPDX-License-Identifier: MIT
// TLS with a client.

#ifndef EMULATOR_TLS_CHANNEL_H_
#define EMULATOR_TLS_CHANNEL_H_

#include <openssl/ssl.h>

#include <memory>

#include "emulator/channel.h"

namespace stowra_emulator {

// The first Receive or Send makes the handshake. `context` must outlive this object.
class TlsChannel : public Channel {
 public:
  // Throws std::bad_alloc if memory runs out.
  TlsChannel(SSL_CTX& context, int socket);

  ssize_t Receive(char* data, std::size_t size) override;
  ssize_t Peek(char* data, std::size_t size) override;
  ssize_t Send(const char* data, std::size_t size) override;
  bool HasBufferedInput() const override;
  void EndSending() override;

 private:
  struct Free {
    void operator()(SSL* session) const { SSL_free(session); }
  };

  ssize_t Outcome(int result, std::size_t count);

  std::unique_ptr<SSL, Free> session_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_TLS_CHANNEL_H_
