// The sockets that a transfer loop waits for.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_

#include <poll.h>

#include <cstddef>
#include <vector>

namespace ovrant::internet {

// Sockets for poll(), each with the wanted events and an owner. Not thread-safe.
class SocketSet {
 public:
  struct Ready {
    int socket;
    short events;
    void* owner;
  };

  // `wake_socket` belongs to the set for good, unless it is -1. Wait never returns it.
  explicit SocketSet(int wake_socket);

  // Makes room for `count` sockets in all, so that Watch does not fail. A call that throws
  // std::bad_alloc changes nothing.
  void Reserve(std::size_t count);

  // Adds the socket, or changes its events and owner. False when memory runs out.
  bool Watch(int socket, short events, void* owner);
  void Forget(int socket);
  void ForgetOwner(const void* owner);

  // Returns a socket of that owner, or null. Valid until the set changes.
  const pollfd* FindOwned(const void* owner) const;

  // Waits up to `milliseconds` until a socket is ready, or without end for -1. The result is valid
  // until the next call.
  const std::vector<Ready>& Wait(int milliseconds);

  // Whether the last wait found the wake socket readable.
  bool is_woken() const { return is_woken_; }

 private:
  std::size_t IndexOf(int socket) const;

  const bool has_wake_socket_;
  bool is_woken_ = false;
  std::vector<pollfd> polls_;
  std::vector<void*> owners_;  // of polls_[i]
  std::vector<Ready> ready_;
};

// Counts the bytes that the system holds for a connected socket and the peer has not acknowledged.
// 0 where the system does not tell.
std::size_t CountUnsentBytes(int socket);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_
