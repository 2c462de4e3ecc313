// Wakes another thread from poll().

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_WAKE_PIPE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_WAKE_PIPE_H_

#include <array>
#include <atomic>

namespace ovrant::internet {

// A pipe within one process. Any number of Wakes before a Drain count as one, and make one system
// call.
class WakePipe {
 public:
  // Throws std::system_error when the process has no descriptors left.
  WakePipe();
  ~WakePipe();

  WakePipe(const WakePipe&) = delete;
  WakePipe& operator=(const WakePipe&) = delete;

  // Readable from a Wake until the next Drain.
  int socket() const { return ends_[0]; }

  // Any thread.
  void Wake();

  // Call it when the socket is readable. Work published before Wake() is visible after Drain().
  void Drain();

 private:
  std::array<int, 2> ends_;
  std::atomic<bool> woken_{false};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_WAKE_PIPE_H_
