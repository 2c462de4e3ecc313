// SPDX-License-Identifier: MIT
#include "emulator/replay/har.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "emulator/replay/base64.h"
#include "emulator/utf8.h"

namespace stowra_emulator {
namespace {

using nlohmann::ordered_json;

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const DecodedCharacter character = DecodeUtf8(text);
    if (!character.is_valid) return false;
    text.remove_prefix(character.size);
  }
  return true;
}

ordered_json ToJson(const HttpFields& fields) {
  ordered_json array = ordered_json::array();
  for (const auto& [name, value] : fields) {
    // Rarely, a field has bytes in an older encoding.
    array.push_back(IsUtf8(value) ? ordered_json{{"name", name}, {"value", value}}
                                  : ordered_json{{"name", name},
                                                 {"value", EncodeBase64(value)},
                                                 {"_encoding", "base64"}});
  }
  return array;
}

// Adds the members "text" and, for bytes, `encoding`.
void SetText(ordered_json& json, const std::string& body, const char* encoding) {
  const bool is_text = IsUtf8(body);
  json["text"] = is_text ? body : EncodeBase64(body);
  if (!is_text) json[encoding] = "base64";
}

std::string TextOf(const ordered_json& json, const char* name) {
  const auto found = json.find(name);
  return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

const ordered_json& MemberOf(const ordered_json& json, const char* name) {
  const auto found = json.find(name);
  if (found == json.end()) throw std::runtime_error(std::string("an entry has no '") + name + "'");
  return *found;
}

std::string DecodedText(const ordered_json& json, const char* text, const char* encoding) {
  std::string value = TextOf(json, text);
  if (TextOf(json, encoding) != "base64") return value;
  std::optional<std::string> bytes = DecodeBase64(value);
  if (!bytes) throw std::runtime_error("a text is not base64");
  return *std::move(bytes);
}

HttpFields FieldsOf(const ordered_json& message) {
  HttpFields fields;
  for (const ordered_json& field : MemberOf(message, "headers")) {
    const std::string name = TextOf(field, "name");
    // HTTP/2 has fields such as ":status" in place of the first line.
    if (name.empty() || name.front() == ':') continue;
    fields.emplace_back(name, DecodedText(field, "value", "_encoding"));
  }
  return fields;
}

// Splits an address into the site and the target.
std::pair<std::string, std::string> SplitUrl(const std::string& url) {
  const std::size_t scheme_end = url.find("://");
  const std::size_t host = scheme_end == std::string::npos ? 0 : scheme_end + 3;
  const std::size_t path = std::min(url.find_first_of("/?#", host), url.size());
  std::string target = url.substr(path, url.find('#', path) - path);
  if (target.empty() || target.front() != '/') target.insert(0, "/");
  return {url.substr(0, path), target};
}

// True if a client expects no body, whatever the fields say.
bool HasNoBody(const std::string& method, int status) {
  return method == "HEAD" || status < 200 || status == 204 || status == 304;
}

// Makes the fields fit the body that follows them.
HttpFields FitFields(const HttpFields& fields, bool is_encoded, std::size_t body_size) {
  HttpFields fitted;
  bool has_length = false;
  for (const auto& [name, value] : fields) {
    if (IsConnectionField(name)) continue;
    if (!is_encoded && EqualNames(name, "Content-Encoding")) continue;
    if (!EqualNames(name, "Content-Length")) {
      fitted.emplace_back(name, value);
    } else if (!std::exchange(has_length, true)) {
      fitted.emplace_back(name, std::to_string(body_size));
    }
  }
  if (!has_length) fitted.emplace_back("Content-Length", std::to_string(body_size));
  return fitted;
}

HttpRequest ReadRequest(const ordered_json& json, Exchange& exchange) {
  HttpRequest request;
  request.method = TextOf(json, "method");
  std::tie(exchange.site, request.target) = SplitUrl(TextOf(json, "url"));
  request.fields = FieldsOf(json);
  const auto body = json.find("postData");
  if (body != json.end()) request.body = DecodedText(*body, "text", "_encoding");
  return request;
}

HttpResponse ReadResponse(const ordered_json& json, const std::string& method) {
  HttpResponse response;
  response.status = json.value("status", 0);
  response.reason = TextOf(json, "statusText");
  const ordered_json& content = MemberOf(json, "content");
  response.fields = FieldsOf(json);
  if (HasNoBody(method, response.status)) return response;
  response.body = DecodedText(content, "text", "encoding");
  const bool is_encoded = content.value("_encoded", false);
  response.fields = FitFields(response.fields, is_encoded, response.body.size());
  return response;
}

Exchange ReadEntry(const ordered_json& json) {
  Exchange exchange;
  exchange.started = TextOf(json, "startedDateTime");
  exchange.request = ReadRequest(MemberOf(json, "request"), exchange);
  exchange.response = ReadResponse(MemberOf(json, "response"), exchange.request.method);
  const double time = json.value("time", 0.0);
  exchange.response.delay = std::chrono::milliseconds(static_cast<long>(std::max(time, 0.0)));
  return exchange;
}

}  // namespace

ordered_json ToHarEntry(const Exchange& exchange) {
  const auto& [request, response, site, started] = exchange;
  const auto time = response.delay.count();
  const std::string type = FieldValue(request.fields, "Content-Type");
  ordered_json sent = {{"method", request.method},
                       {"url", site + request.target},
                       {"httpVersion", "HTTP/1.1"},
                       {"cookies", ordered_json::array()},
                       {"headers", ToJson(request.fields)},
                       {"queryString", ordered_json::array()},
                       {"headersSize", -1},
                       {"bodySize", request.body.size()}};
  if (!request.body.empty()) {
    sent["postData"] = {{"mimeType", type}, {"params", ordered_json::array()}};
    SetText(sent["postData"], request.body, "_encoding");
  }
  ordered_json content = {{"size", response.body.size()},
                          {"mimeType", FieldValue(response.fields, "Content-Type")}};
  SetText(content, response.body, "encoding");
  if (!FieldValue(response.fields, "Content-Encoding").empty()) content["_encoded"] = true;
  ordered_json received = {{"status", response.status},
                           {"statusText", response.reason},
                           {"httpVersion", "HTTP/1.1"},
                           {"cookies", ordered_json::array()},
                           {"headers", ToJson(response.fields)},
                           {"content", std::move(content)},
                           {"redirectURL", FieldValue(response.fields, "Location")},
                           {"headersSize", -1},
                           {"bodySize", response.body.size()}};
  return {{"startedDateTime", started},
          {"time", time},
          {"request", std::move(sent)},
          {"response", std::move(received)},
          {"cache", ordered_json::object()},
          {"timings", {{"send", 0}, {"wait", time}, {"receive", 0}}}};
}

std::vector<Exchange> ParseHar(const std::string& text) {
  try {
    const ordered_json json = ordered_json::parse(text);
    std::vector<Exchange> exchanges;
    for (const ordered_json& entry : json.at("log").at("entries")) {
      Exchange exchange = ReadEntry(entry);
      if (exchange.response.status >= 100) exchanges.push_back(std::move(exchange));
    }
    return exchanges;
  } catch (const ordered_json::exception& error) {
    throw std::runtime_error(error.what());
  }
}

}  // namespace stowra_emulator
