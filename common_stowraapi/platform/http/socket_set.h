// The sockets that a loop waits for.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_

#include <poll.h>

#include <cstddef>
#include <vector>

namespace ovrant::internet {

// A set of sockets with the events wanted of each and an owner, for poll(). Not thread-safe.
class SocketSet {
 public:
  struct Ready {
    int socket;
    short events;
    void* owner;
  };

  // `wake_socket`, if not -1, always belongs to the set, and is not among the ready ones.
  explicit SocketSet(int wake_socket);

  // Room for `count` sockets in all, so that Watch does not fail. std::bad_alloc changes nothing.
  void Reserve(std::size_t count);

  // Adds the socket, or changes what is wanted of it. False when there is no memory for it.
  bool Watch(int socket, short events, void* owner);
  void Forget(int socket);
  void ForgetOwner(const void* owner);

  // A socket of that owner; null when it has none. Valid until the set is next changed.
  const pollfd* FindOwned(const void* owner) const;

  // Waits up to `milliseconds` (-1: without end) until a socket is ready. The result is valid until
  // the next call.
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

// Bytes that have been handed to the system for a connected socket and that the peer has not yet
// taken; 0 where the system does not tell.
std::size_t CountUnsentBytes(int socket);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SOCKET_SET_H_
