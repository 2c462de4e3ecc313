// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/failure.h"

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <string>

namespace stowra_test {
namespace {

using ovrant::internet::Failure;
using ovrant::internet::FailureOf;
using ovrant::internet::TransferError;
using ovrant::internet::TransferPhase;

constexpr TransferPhase kConnecting = TransferPhase::kConnecting;
constexpr TransferPhase kHead = TransferPhase::kInsideHead;
constexpr TransferPhase kBody = TransferPhase::kInsideBody;

TEST(FailureTest, MeaningDependsOnCodeAndPhase) {
  const struct {
    CURLcode code;
    TransferPhase phase;
    TransferError error;
  } kCases[] = {{CURLE_URL_MALFORMAT, kConnecting, TransferError::kBadUrl},
                {CURLE_COULDNT_RESOLVE_HOST, kConnecting, TransferError::kNameNotFound},
                {CURLE_COULDNT_RESOLVE_PROXY, kConnecting, TransferError::kNameNotFound},
                {CURLE_COULDNT_CONNECT, kConnecting, TransferError::kNotConnected},
                {CURLE_RECV_ERROR, kConnecting, TransferError::kNotConnected},
                {CURLE_RECV_ERROR, kHead, TransferError::kCutOff},
                {CURLE_RECV_ERROR, kBody, TransferError::kCutOff},
                {CURLE_SEND_ERROR, kHead, TransferError::kCutOff},
                {CURLE_GOT_NOTHING, kHead, TransferError::kCutOff},
                {CURLE_PARTIAL_FILE, kBody, TransferError::kCutOff},
                {CURLE_SSL_CONNECT_ERROR, kConnecting, TransferError::kTls},
                {CURLE_PEER_FAILED_VERIFICATION, kConnecting, TransferError::kTls},
                {CURLE_SSL_CACERT_BADFILE, kConnecting, TransferError::kTls},
                {CURLE_OPERATION_TIMEDOUT, kConnecting, TransferError::kSilent},
                {CURLE_WEIRD_SERVER_REPLY, kHead, TransferError::kMalformed},
                {CURLE_UNSUPPORTED_PROTOCOL, kHead, TransferError::kMalformed},
                {CURLE_HTTP2_STREAM, kBody, TransferError::kMalformed},
                {CURLE_HTTP2, kConnecting, TransferError::kNotConnected},
                {CURLE_FILESIZE_EXCEEDED, kHead, TransferError::kTooLarge},
                {CURLE_OUT_OF_MEMORY, kConnecting, TransferError::kOutOfMemory},
                {CURLE_OUT_OF_MEMORY, kBody, TransferError::kOutOfMemory},
                // libcurl says so of a header line that is too long: before 8.6, and since.
                {CURLE_OUT_OF_MEMORY, kHead, TransferError::kTooLarge},
                {static_cast<CURLcode>(100), kHead, TransferError::kTooLarge}};
  for (const auto& item : kCases) {
    const Failure failure = FailureOf(item.code, item.phase);
    EXPECT_TRUE(failure);
    EXPECT_EQ(failure.error, item.error) << curl_easy_strerror(item.code);
    EXPECT_NE(std::string(failure.text), "");
  }
}

TEST(FailureTest, NoFailureIsFalse) {
  EXPECT_FALSE(Failure());
  EXPECT_FALSE(ovrant::internet::kNoFailure);
}

}  // namespace
}  // namespace stowra_test
