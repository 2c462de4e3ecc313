// SPDX-License-Identifier: MIT
// Fixture for the tests of ExtensionStoreStatus.

#ifndef TESTS_SUBSTITUTE_EXTENSION_STORE_FIXTURE_H_
#define TESTS_SUBSTITUTE_EXTENSION_STORE_FIXTURE_H_

#include <memory>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {

inline constexpr char kOne[] = R"({"extensions":[{"id":"one"}]})";
inline constexpr char kTwo[] = R"({"extensions":[{"id":"two"}]})";

inline constexpr char kReturned[] = "post ExtensionStoreStatusRequestReturned 0x2a";
inline constexpr char kFailed[] = "post ExtensionStoreStatusRequestFailed 0x2a";
inline constexpr char kPublicSuccess[] = "post ExtensionStoreAsyncStatusSucceeded";
inline constexpr char kPublicFailure[] = "post ExtensionStoreAsyncStatusFailed";
inline constexpr char kDelegateConstructed[] =
    "delegate constructed: context 0x2a, 28002 ExtensionStoreStatusRequestReturned, 28003 "
    "ExtensionStoreStatusRequestFailed";

// Has an object that was given http://a/, the context 0x2a and the body {}.
class ExtensionStoreFixture : public SubstituteTest {
 protected:
  using ExtensionStoreStatus = ovrant::extensionstoreapi::ExtensionStoreStatus;

  ExtensionStoreFixture() : status(new ExtensionStoreStatus) {
    status->Init("http://a/", Address(0x2a), "{}");
    ExtensionStoreStatus::status_sync_completed_ = false;
    TakeEffects();
  }

  // Starts a request and drops the effects of the start.
  void Start() {
    status->AsynchronousStatus();
    TakeEffects();
  }

  // The same with its end.
  void StartAndEnd(const Outcome& outcome) {
    Start();
    EXPECT_TRUE(EndTransfer("http://a/", outcome));
    TakeEffects();
  }

  // The id of the only item in the last response, or the empty string.
  std::string OnlyId() {
    const auto items = status->GetItemMapFromResponse();
    EXPECT_LE(items.size(), 1U);
    return items.empty() ? "" : items.begin()->first.utf8();
  }

  static bool Completed() { return ExtensionStoreStatus::status_sync_completed_; }

  std::unique_ptr<ExtensionStoreStatus> status;
};

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_EXTENSION_STORE_FIXTURE_H_
