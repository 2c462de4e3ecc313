// SPDX-License-Identifier: MIT
#include "tests/emulator/http_client.h"

namespace stowra_emulator {

httplib::Client PatientClient(const std::string& url) {
  httplib::Client client(url);
  client.set_read_timeout(kPatience);
  client.set_write_timeout(kPatience);
  client.set_url_encode(false);
  return client;
}

httplib::Response ResponseOf(const httplib::Result& result, int status) {
  EXPECT_TRUE(result) << httplib::to_string(result.error());
  if (!result) return httplib::Response();
  EXPECT_EQ(result->status, status) << result->body.substr(0, 500);
  return *result;
}

httplib::MultipartFormDataItems FormOf(const std::string& name, const std::string& bytes,
                                       const std::string& type) {
  return {{"name", name, "", ""},
          {"subjectId", "m42", "", ""},
          {"subjectClass", "entity", "", ""},
          {"binary", bytes, "chair.qmf", type}};
}

}  // namespace stowra_emulator
