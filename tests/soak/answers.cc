// SPDX-License-Identifier: MIT
#include "tests/soak/answers.h"

#include <atomic>
#include <chrono>
#include <cstdlib>

#include "tests/platform/http/gzip_text.h"

namespace stowra_test {
namespace {

std::atomic<int> under_way{0};

struct UnderWay {
  UnderWay() { ++under_way; }
  ~UnderWay() { --under_way; }
};

constexpr std::size_t kBigPadding = 400'000;

Target ParsePath(const std::string& path) {
  char* rest = nullptr;
  const auto next = [&rest] {
    return static_cast<std::uint32_t>(std::strtoul(rest + 1, &rest, 10));
  };
  Target target;
  rest = const_cast<char*>(path.c_str());
  target.document = static_cast<Document>(next());
  target.manner = static_cast<Manner>(next());
  target.number = next();
  return target;
}

std::string Feed(const std::string& number) {
  return "<feed xmlns='http://www.w3.org/2005/Atom'"
         " xmlns:o='http://a9.com/-/spec/opensearchrss/1.0/'><title>" +
         number +
         "</title><o:totalResults>40</o:totalResults><o:startIndex>13</o:startIndex>"
         "<o:itemsPerPage>6</o:itemsPerPage></feed>";
}

std::string Configuration(const std::string& number) {
  return "<upload><successUrl>" + number +
         "</successUrl><failureUrl>f</failureUrl><files><file><uploadUrl>u</uploadUrl>"
         "<type>t</type></file></files></upload>";
}

}  // namespace

std::string Target::Path() const {
  return "/" + std::to_string(static_cast<int>(document)) + "/" +
         std::to_string(static_cast<int>(manner)) + "/" + std::to_string(number);
}

Manner DrawManner(Random& random) {
  if (!random.OneIn(3)) return static_cast<Manner>(random.Draw(2));
  return static_cast<Manner>(random.Draw(kManners));
}

int StatusOf(Manner manner) {
  if (manner >= Manner::kCut) return 0;
  return manner == Manner::kMissing ? 404 : manner == Manner::kBroken ? 500 : 200;
}

std::string BodyOf(const Target& target) {
  const std::string number = std::to_string(target.number);
  const std::string padding(target.manner == Manner::kBig ? kBigPadding : 0, ' ');
  switch (target.document) {
    case Document::kNumber:
      return number + padding;
    case Document::kUser:
      return R"({"uid":")" + number + R"(","email":"a@b.example","vkr_id":"v"})" + padding;
    case Document::kUpdate:
      return R"({"update":{"current_version":")" + number + R"(","expire_version":"1"}})" + padding;
    case Document::kExtensions:
      return R"({"extensions":[{"id":")" + number + R"(","version":"2.5"}]})" + padding;
    case Document::kFeed:
      return Feed(number) + padding;
    case Document::kConfiguration:
      return Configuration(number) + padding;
  }
  return "";
}

void CheckReply(const Target& target, bool received, int status, const std::string& body) {
  const std::string asked = "GET " + target.Path() + " ";
  if (!received) {
    if (!body.empty()) Violate(asked + "failed with a body");
  } else if (StatusOf(target.manner) == 0) {
    Violate(asked + "received a reply that was never sent whole");
  } else if (status != StatusOf(target.manner)) {
    Violate(asked + "has status " + std::to_string(status));
  } else if (body != BodyOf(target)) {
    Violate(asked + "has a wrong body: " + body.substr(0, 80));
  }
}

void Answer(const RawRequest& request, RawConnection& connection) {
  const UnderWay guard;
  const Target target = ParsePath(request.target);
  const std::string body = request.method == "POST" ? request.body : BodyOf(target);
  const int status = StatusOf(target.manner);
  const std::string reply = Response(status == 0 ? 200 : status, body);
  const std::string half = reply.substr(0, reply.size() - (body.size() + 1) / 2);
  switch (target.manner) {
    case Manner::kWell:
    case Manner::kBig:
    case Manner::kMissing:
    case Manner::kBroken:
      connection.Write(reply);
      return;
    case Manner::kGzip:
      connection.Write(Response(200, Gzip(body), "Content-Encoding: gzip\r\n"));
      return;
    case Manner::kSlow:
      connection.Write(reply.substr(0, reply.size() - 4));
      connection.Drip(reply.substr(reply.size() - 4), std::chrono::milliseconds(4));
      return;
    case Manner::kClosing:
      connection.Write(Response(200, body, "Connection: close\r\n"));
      connection.Close();
      return;
    case Manner::kRedirected: {
      const Target there = {target.document, Manner::kWell, target.number};
      connection.Write(Response(307, "elsewhere", "Location: " + there.Path() + "\r\n"));
      return;
    }
    case Manner::kLoop:
      connection.Write(Response(307, "here", "Location: " + target.Path() + "\r\n"));
      return;
    case Manner::kCut:
      connection.Write(half);
      connection.Close();
      return;
    case Manner::kResetInside:
      connection.Write(half);
      [[fallthrough]];
    case Manner::kReset:
      connection.Reset();
      return;
    case Manner::kStallInside:
      connection.Write(half);
      [[fallthrough]];
    case Manner::kStall:
      connection.Stall();
      connection.EndWriting();
      return;
    default:
      Violate("the server got an unknown request");
  }
}

int AnswersUnderWay() { return under_way; }

}  // namespace stowra_test
