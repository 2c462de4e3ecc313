// SPDX-License-Identifier: MIT
#include "tests/substitute/transport_watch.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/substitute/effects.h"

namespace ovrant::internet {

// Recognises a transport by its inside, as it is in a sample.
class InternetDataTestPeer {
 public:
  explicit InternetDataTestPeer(const InternetData& sample)
      : vtable_(*reinterpret_cast<const void* const*>(&sample)),
        url_(Distance(sample, sample.url_)),
        last_text_(Distance(sample, sample.reserved_texts_[3])) {}

  // The URL of the transport whose last reserved text is `string`; null if it lies in no transport.
  // Looks at memory before `string` that may not belong to it, hence not under AddressSanitizer.
  __attribute__((no_sanitize("address"))) const ovrant::utils::ovrant_ustring* UrlBeside(
      const void* string) const {
    const char* const begin = static_cast<const char*>(string) - last_text_;
    if (*reinterpret_cast<const void* const volatile*>(begin) != vtable_) return nullptr;
    return reinterpret_cast<const ovrant::utils::ovrant_ustring*>(begin + url_);
  }

 private:
  static std::ptrdiff_t Distance(const InternetData& sample,
                                 const ovrant::utils::ovrant_ustring& member) {
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&sample);
  }

  const void* const vtable_;
  const std::ptrdiff_t url_;
  const std::ptrdiff_t last_text_;
};

}  // namespace ovrant::internet

namespace stowra_substitute {
namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataTestPeer;
using ovrant::utils::ovrant_ustring;

constexpr int kTextsSideBySide = 4;

int constructed = 0;
bool making_sample = false;

// The fourth of a row of empty strings, unless a fifth has followed: the beginning of what holds
// more need not be a transport's, nor be there to look at.
const void* last_of_four = nullptr;

// Its sample is never destroyed: that would be recorded.
const InternetDataTestPeer& Peer() {
  static const InternetData& sample = *new InternetData("");
  static const InternetDataTestPeer peer(sample);
  return peer;
}

}  // namespace

void WatchEmptyString(const void* string) {
  static std::uintptr_t previous = 0;
  static int side_by_side = 0;
  if (making_sample) return;

  const auto here = reinterpret_cast<std::uintptr_t>(string);
  const bool goes_on = here == previous + sizeof(ovrant_ustring);
  previous = here;
  if (!goes_on) RecordWatchedTransport();
  side_by_side = goes_on ? side_by_side + 1 : 1;
  last_of_four = side_by_side == kTextsSideBySide ? string : nullptr;
}

void RecordWatchedTransport() {
  const void* const string = std::exchange(last_of_four, nullptr);
  if (string == nullptr) return;
  making_sample = true;
  const InternetDataTestPeer& peer = Peer();
  making_sample = false;
  if (const ovrant_ustring* const url = peer.UrlBeside(string)) {
    ++constructed;
    Record(url->utf8() + ": constructed");
  }
}

int CountConstructedTransports() {
  RecordWatchedTransport();
  return constructed;
}

}  // namespace stowra_substitute
