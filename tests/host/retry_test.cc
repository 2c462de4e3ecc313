// SPDX-License-Identifier: MIT
#include "host/retry.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;

constexpr std::time_t kNow = 784111770;  // seven seconds before the dates below

TransferEvent Answered(int status) {
  TransferEvent end;
  end.status = status;
  return end;
}

TransferEvent Failed(TransferError reason) {
  TransferEvent end;
  end.reason = reason;
  end.error = "no";
  return end;
}

long SecondsBefore(int attempt, const std::string& retry_after) {
  const auto pause = PauseBefore(attempt, retry_after, kNow);
  return pause ? static_cast<long>(pause->count()) : -1;
}

TEST(RetryTest, RepeatsFailuresThatMayPass) {
  for (const int status : {429, 502, 503, 504}) EXPECT_TRUE(MaySucceedLater(Answered(status)));
  for (const TransferError error : {TransferError::kNameNotFound, TransferError::kNotConnected,
                                    TransferError::kSilent, TransferError::kCutOff}) {
    EXPECT_TRUE(MaySucceedLater(Failed(error)));
  }
}

TEST(RetryTest, DoesNotRepeatOtherFailures) {
  for (const int status : {200, 400, 404, 500, 501}) {
    EXPECT_FALSE(MaySucceedLater(Answered(status))) << status;
  }
  for (const TransferError error :
       {TransferError::kBadUrl, TransferError::kTls, TransferError::kMalformed,
        TransferError::kTooLarge, TransferError::kTooManyRedirects}) {
    EXPECT_FALSE(MaySucceedLater(Failed(error)));
  }
}

TEST(RetryTest, DoublesThePauseUpToAMinute) {
  const long expected[] = {1, 2, 4, 8, 16, 32, 60, 60};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(SecondsBefore(i + 2, ""), expected[i]);
  EXPECT_EQ(SecondsBefore(101, ""), 60);
  EXPECT_EQ(SecondsBefore(2, "soon"), 1);
  EXPECT_EQ(SecondsBefore(2, "-5"), 1);
}

TEST(RetryTest, ObeysRetryAfterInSeconds) {
  EXPECT_EQ(SecondsBefore(2, "0"), 0);
  EXPECT_EQ(SecondsBefore(5, "3600"), 3600);
  EXPECT_EQ(SecondsBefore(5, "3601"), -1);
  EXPECT_EQ(SecondsBefore(5, "99999999999999999999999"), -1);
}

TEST(RetryTest, ObeysRetryAfterAsDate) {
  EXPECT_EQ(SecondsBefore(2, "Sun, 06 Nov 1994 08:49:37 GMT"), 7);
  EXPECT_EQ(SecondsBefore(2, "Sunday, 06-Nov-94 08:49:37 GMT"), 7);
  EXPECT_EQ(SecondsBefore(2, "Sun Nov  6 08:49:37 1994"), 7);
  EXPECT_EQ(SecondsBefore(2, "Sun, 06 Nov 1994 08:49:00 GMT"), 0);
  EXPECT_EQ(SecondsBefore(2, "Mon, 07 Nov 1994 08:49:37 GMT"), -1);
}

}  // namespace
}  // namespace stowra
