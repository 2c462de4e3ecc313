#include "common_stowraapi/platform/http/socket_set.h"

#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <new>

namespace ovrant::internet {

SocketSet::SocketSet(int wake_socket) : has_wake_socket_(wake_socket != -1) {
  Reserve(1);
  if (has_wake_socket_) Watch(wake_socket, POLLIN, nullptr);
}

void SocketSet::Reserve(std::size_t count) {
  polls_.reserve(count);
  owners_.reserve(count);
  ready_.reserve(count);
}

bool SocketSet::Watch(int socket, short events, void* owner) {
  const std::size_t index = IndexOf(socket);
  if (index == polls_.size()) {
    try {
      Reserve(polls_.size() == polls_.capacity() ? polls_.size() * 2 : polls_.size() + 1);
    } catch (const std::bad_alloc&) {
      return false;
    }
    polls_.push_back({socket, events, 0});
    owners_.push_back(owner);
  }
  polls_[index].events = events;
  owners_[index] = owner;
  return true;
}

void SocketSet::Forget(int socket) {
  const std::size_t index = IndexOf(socket);
  if (index == polls_.size()) return;
  polls_[index] = polls_.back();
  polls_.pop_back();
  owners_[index] = owners_.back();
  owners_.pop_back();
}

void SocketSet::ForgetOwner(const void* owner) {
  std::replace(owners_.begin(), owners_.end(), const_cast<void*>(owner),
               static_cast<void*>(nullptr));
}

const pollfd* SocketSet::FindOwned(const void* owner) const {
  const auto found = std::find(owners_.begin(), owners_.end(), owner);
  return found == owners_.end() ? nullptr
                                : &polls_[static_cast<std::size_t>(found - owners_.begin())];
}

const std::vector<SocketSet::Ready>& SocketSet::Wait(int milliseconds) {
  ready_.clear();
  is_woken_ = false;
  // An interrupted wait counts as one in which no socket was ready.
  int left = poll(polls_.data(), static_cast<nfds_t>(polls_.size()), milliseconds);
  for (std::size_t i = 0; i < polls_.size() && left > 0; ++i) {
    if (polls_[i].revents == 0) continue;
    --left;
    if (i == 0 && has_wake_socket_) {
      is_woken_ = true;
    } else {
      ready_.push_back({polls_[i].fd, polls_[i].revents, owners_[i]});
    }
  }
  return ready_;
}

std::size_t SocketSet::IndexOf(int socket) const {
  const auto found = std::find_if(polls_.begin(), polls_.end(),
                                  [socket](const pollfd& poll) { return poll.fd == socket; });
  return static_cast<std::size_t>(found - polls_.begin());
}

std::size_t CountUnsentBytes(int socket) {
  int count = 0;
#if defined(SO_NWRITE)
  socklen_t size = sizeof(count);
  if (getsockopt(socket, SOL_SOCKET, SO_NWRITE, &count, &size) != 0) return 0;
#elif defined(TIOCOUTQ)
  if (ioctl(socket, TIOCOUTQ, &count) != 0) return 0;
#endif
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace ovrant::internet
