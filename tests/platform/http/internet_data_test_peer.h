// SPDX-License-Identifier: MIT
// Access to the private members of a transport.

#ifndef TESTS_PLATFORM_HTTP_INTERNET_DATA_TEST_PEER_H_
#define TESTS_PLATFORM_HTTP_INTERNET_DATA_TEST_PEER_H_

#include <vector>

#include "common_stowraapi/platform/internet_data.h"

namespace ovrant::internet {

class InternetDataTestPeer {
 public:
  // Makes a redirect a response like any other.
  static void StopFollowingRedirects(InternetData& transport) { transport.redirect_limit_ = 0; }

  static void SetInactivityTimeout(InternetData& transport, float seconds) {
    transport.inactivity_timeout_ = seconds;
  }

  // The members in the order of the binary interface.
  static std::vector<const void*> Members(const InternetData& t) {
    return {&t.started_,
            &t.url_,
            &t.inactivity_timeout_,
            &t.redirect_limit_,
            &t.reserved_texts_[0],
            &t.reserved_texts_[3],
            &t.received_data_,
            &t.received_data_length_,
            &t.send_headers_,
            &t.status_code_,
            &t.responded_,
            &t.received_headers_,
            &t.send_data_,
            &t.transfer_,
            &t.reserved_flags_[0],
            &t.reserved_flags_[1]};
  }
};

}  // namespace ovrant::internet

#endif  // TESTS_PLATFORM_HTTP_INTERNET_DATA_TEST_PEER_H_
