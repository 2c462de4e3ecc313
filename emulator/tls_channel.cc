// SPDX-License-Identifier: MIT
#include "emulator/tls_channel.h"

#include <openssl/err.h>

#include <new>

namespace stowra_emulator {

TlsChannel::TlsChannel(SSL_CTX& context, int socket) : session_(SSL_new(&context)) {
  if (session_ == nullptr || SSL_set_fd(session_.get(), socket) != 1) throw std::bad_alloc();
  SSL_set_accept_state(session_.get());
  SSL_set_mode(session_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
}

ssize_t TlsChannel::Receive(char* data, std::size_t size) {
  ERR_clear_error();
  std::size_t count = 0;
  const int result = SSL_read_ex(session_.get(), data, size, &count);
  return Outcome(result, count);
}

ssize_t TlsChannel::Peek(char* data, std::size_t size) {
  ERR_clear_error();
  std::size_t count = 0;
  const int result = SSL_peek_ex(session_.get(), data, size, &count);
  return Outcome(result, count);
}

ssize_t TlsChannel::Send(const char* data, std::size_t size) {
  ERR_clear_error();
  std::size_t count = 0;
  const int result = SSL_write_ex(session_.get(), data, size, &count);
  return Outcome(result, count);
}

bool TlsChannel::HasBufferedInput() const { return SSL_pending(session_.get()) > 0; }

void TlsChannel::EndSending() {
  ERR_clear_error();
  if (SSL_is_init_finished(session_.get()) == 1) SSL_shutdown(session_.get());
}

ssize_t TlsChannel::Outcome(int result, std::size_t count) {
  if (result == 1) return static_cast<ssize_t>(count);
  switch (SSL_get_error(session_.get(), result)) {
    case SSL_ERROR_WANT_READ:
      return kWantsRead;
    case SSL_ERROR_WANT_WRITE:
      return kWantsWrite;
    case SSL_ERROR_ZERO_RETURN:
      return 0;
    default:
      return kFailed;
  }
}

}  // namespace stowra_emulator
