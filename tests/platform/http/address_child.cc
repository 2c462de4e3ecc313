// SPDX-License-Identifier: MIT
// A program that downloads one URL. Usage: address_child MODE URL SECONDS.
//
// MODE is "blocking" or "background". SECONDS is the inactivity timeout. The program prints the
// body, or "failed" and the number of the TransferError, and then the milliseconds that it took.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/support/notification_recorder.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::TransferDefaults;
using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;

constexpr char kEnded[] = "AddressChildEnded";

void DownloadInBackground(InternetData& transport) {
  std::promise<void> ended;
  const NotificationRecorder recorder({kEnded}, [&ended] { ended.set_value(); });
  InternetDataDelegate delegate(nullptr, 1, kEnded, 2, kEnded);
  if (transport.DownloadWithDelegate(&delegate, nullptr)) ended.get_future().wait();
}

void Run(const std::string& mode, const char* url) {
  TransferError reason = TransferError::kNone;
  InternetData::SetTransferListener([&reason](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kEnded) reason = event.reason;
  });
  InternetData transport(url);
  const auto begin = std::chrono::steady_clock::now();
  if (mode == "blocking") {
    transport.Download();
  } else {
    DownloadInBackground(transport);
  }
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
  InternetData::SetTransferListener(nullptr);
  if (reason == TransferError::kNone) {
    std::printf("%.*s", static_cast<int>(transport.received_data_length()),
                reinterpret_cast<const char*>(transport.received_data()));
  } else {
    std::printf("failed %d", static_cast<int>(reason));
  }
  std::printf(" %.0f\n", time.count());
}

}  // namespace
}  // namespace stowra_test

int main(int count, char** arguments) {
  if (count != 4) return 2;
  stowra_test::TransferDefaults defaults;
  defaults.inactivity_timeout = std::strtof(arguments[3], nullptr);
  stowra_test::InternetData::SetDefaults(defaults);
  stowra_test::Run(arguments[1], arguments[2]);
}
