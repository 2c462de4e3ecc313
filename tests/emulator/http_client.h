// SPDX-License-Identifier: MIT
// Requests of any kind, made by a real client.

#ifndef TESTS_EMULATOR_HTTP_CLIENT_H_
#define TESTS_EMULATOR_HTTP_CLIENT_H_

#include <httplib.h>

#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {

// A client that waits for kPatience for each answer.
httplib::Client PatientClient(const std::string& url);

// The response. Fails the current test if there is none or its status is another.
httplib::Response ResponseOf(const httplib::Result& result, int status = 200);

// The form that uploads a file.
httplib::MultipartFormDataItems FormOf(const std::string& name, const std::string& bytes,
                                       const std::string& type = kQmf);

class ClientTest : public ContentTest {
 protected:
  httplib::Client client_ = PatientClient(emulator_.url());
};

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_HTTP_CLIENT_H_
