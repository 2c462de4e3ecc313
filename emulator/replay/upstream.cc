// SPDX-License-Identifier: MIT
#include "emulator/replay/upstream.h"

#include <httplib.h>

#include <algorithm>
#include <chrono>

#include "emulator/replay/credentials.h"
#include "emulator/request_error.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

constexpr std::chrono::seconds kTimeout(30);

struct Address {
  std::string site;  // Without user name and password.
  std::string user;
  std::string password;
};

Address SplitAddress(const std::string& upstream) {
  const std::size_t host = upstream.find("://") + 3;
  const std::size_t at = upstream.rfind('@');
  if (at == std::string::npos || at < host) return {upstream, "", ""};
  const std::string user_info = upstream.substr(host, at - host);
  const std::size_t colon = std::min(user_info.find(':'), user_info.size());
  return {upstream.substr(0, host) + upstream.substr(at + 1),
          PercentDecode(user_info.substr(0, colon)),
          PercentDecode(user_info.substr(std::min(colon + 1, user_info.size())))};
}

// The client writes these itself.
bool IsWrittenByClient(const std::string& name) {
  return IsConnectionField(name) || EqualNames(name, "Host") || EqualNames(name, "Content-Length");
}

httplib::Request MakeRequest(const HttpRequest& raw) {
  httplib::Request request;
  request.method = raw.method;
  request.path = raw.target;
  for (const auto& [name, value] : raw.fields) {
    if (!IsWrittenByClient(name)) request.headers.emplace(name, value);
  }
  // So that a service can link to the recorder, and not past it.
  const std::string host = FieldValue(raw.fields, "Host");
  if (!host.empty() && !request.has_header("X-Forwarded-Host")) {
    request.headers.emplace("X-Forwarded-Host", host);
  }
  request.body = raw.body;
  return request;
}

HttpFields ResponseFields(const httplib::Response& response, const std::string& method,
                          std::size_t body_size) {
  HttpFields fields;
  const bool has_body = method != "HEAD" && response.status != 204 && response.status != 304;
  for (const auto& [name, value] : response.headers) {
    const bool is_length = EqualNames(name, "Content-Length");
    if (!IsConnectionField(name) && !(is_length && has_body)) fields.emplace_back(name, value);
  }
  if (has_body) fields.emplace_back("Content-Length", std::to_string(body_size));
  return fields;
}

}  // namespace

HttpResponse AskUpstream(const std::string& upstream, const HttpRequest& request,
                         std::uint64_t max_body) {
  const Address address = SplitAddress(upstream);
  httplib::Client client(address.site);
  // The request's own credentials go before those of the address.
  if (!address.user.empty() && FieldValue(request.fields, "Authorization").empty()) {
    client.set_basic_auth(address.user, address.password);
  }
  client.set_url_encode(false);
  client.set_decompress(false);
  client.set_connection_timeout(kTimeout);
  client.set_read_timeout(kTimeout);
  client.set_write_timeout(kTimeout);

  HttpResponse answer;
  httplib::Request sent = MakeRequest(request);
  sent.content_receiver = [&answer, max_body](const char* data, std::size_t size, std::uint64_t,
                                              std::uint64_t) {
    if (size > max_body - answer.body.size()) return false;
    answer.body.append(data, size);
    return true;
  };
  const httplib::Result result = client.send(sent);
  if (!result) {
    throw RequestError(502, "no answer from " + WithoutCredentials(upstream) + ": " +
                                httplib::to_string(result.error()));
  }
  answer.status = result->status;
  answer.reason = result->reason;
  answer.fields = ResponseFields(*result, request.method, answer.body.size());
  return answer;
}

}  // namespace stowra_emulator
