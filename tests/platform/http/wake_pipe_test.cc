#include "common_stowraapi/platform/http/wake_pipe.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <cerrno>

namespace stowra_test {
namespace {

using ovrant::internet::WakePipe;

bool IsReadable(const WakePipe& pipe) {
  pollfd wait = {pipe.socket(), POLLIN, 0};
  return poll(&wait, 1, 0) == 1;
}

TEST(WakePipeTest, IsReadableFromAWakeToTheNextDrain) {
  WakePipe pipe;
  EXPECT_FALSE(IsReadable(pipe));
  for (int round = 0; round < 2; ++round) {
    pipe.Wake();
    pipe.Wake();
    EXPECT_TRUE(IsReadable(pipe));
    pipe.Drain();
    EXPECT_FALSE(IsReadable(pipe));
  }
}

TEST(WakePipeTest, ClosesItsDescriptors) {
  int socket = -1;
  {
    const WakePipe pipe;
    socket = pipe.socket();
    EXPECT_NE(fcntl(socket, F_GETFD), -1);
  }
  EXPECT_EQ(fcntl(socket, F_GETFD), -1);
  EXPECT_EQ(errno, EBADF);
}

}  // namespace
}  // namespace stowra_test
