// SPDX-License-Identifier: MIT
// Connections that fail, break or fall silent.

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "tests/faults/fault.h"
#include "tests/platform/http/handlers.h"
#include "tests/support/client_socket.h"
#include "tests/support/closed_port.h"
#include "tests/support/full_listener.h"

namespace stowra_test {
namespace {

constexpr char kPartOfHead[] = "HTTP/1.1 200 OK\r\nContent-Le";
constexpr char kHead[] = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n";
constexpr char kPartOfBody[] = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel";

constexpr std::chrono::milliseconds kPause(125);  // before each byte of a drip

std::function<void(Stage&)> Serve(RawServer::Handler handler) {
  return [handler](Stage& stage) { stage.AddServer(GoodOr(handler)); };
}

// Says `bytes`, then does what `ends` says.
RawServer::Handler SayThen(void (RawConnection::*ends)(), std::string bytes) {
  return [ends, bytes](const RawRequest&, RawConnection& connection) {
    connection.Write(bytes);
    (connection.*ends)();
  };
}

Fault Reset(const char* name, const char* bytes, int status) {
  Fault fault = {name, Serve(SayThen(&RawConnection::Reset, bytes)),
                 Failed(status, TransferError::kCutOff), EveryWay()};
  fault.may_lose_status = true;
  return fault;
}

Fault Silent(const char* name, std::function<void(Stage&)> set, int status) {
  Fault fault = {name, std::move(set), Failed(status, TransferError::kSilent), EveryWay()};
  fault.end = End::kAt;
  fault.runs = 1;
  return fault;
}

Fault Stalls(const char* name, const char* bytes) {
  return Silent(name, Serve(SayThen(&RawConnection::Stall, bytes)), 200);
}

Fault OnUsedConnection(Fault fault) {
  fault.on_used_connection = true;
  return fault;
}

// The server has closed only its own direction before the next request.
Fault HalfClosedBetween() {
  const auto set = [](Stage& stage) {
    stage.AddServer([](const RawRequest& request, RawConnection& connection) {
      connection.Write(Response(200, kGoodBody));
      if (request.target == kGoodTarget) connection.Close();
    });
  };
  return OnUsedConnection({"HalfClosedBetweenTwo", set, Received(200, kGoodBody), EveryWay(), 1});
}

Fault Drip() {
  Fault fault = {"DripOfAByte", Serve([](const RawRequest&, RawConnection& connection) {
                   connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n");
                   connection.Drip(std::string(20, 'x'), kPause);
                 }),
                 Received(200, std::string(20, 'x')), Downloads(), 1};
  fault.end = End::kAfter;
  fault.runs = 1;
  return fault;
}

// A line that never ends is silence, although its bytes arrive.
Fault DripInsideLine(const char* name, const std::string& head) {
  return Silent(name, Serve([head](const RawRequest&, RawConnection& connection) {
                  connection.Write(head);
                  connection.Drip(std::string(1000, 'x'), kPause);
                  connection.Close();
                }),
                200);
}

// Each Open lets one Pass through.
class Turnstile {
 public:
  void Open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++open_for_;
    opened_.notify_one();
  }

  // Waits for at most kPatience.
  void Pass() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (opened_.wait_for(lock, kPatience, [this] { return open_for_ > 0; })) --open_for_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  int open_for_ = 0;
};

// Between two requests the server sends a reply to a request that nobody made. The next request
// gets a connection of its own.
Fault UnaskedBytes() {
  const auto set = [](Stage& stage) {
    auto is_idle = std::make_shared<Turnstile>();
    const auto handler = [is_idle](const RawRequest& request, RawConnection& connection) {
      connection.Write(Response(200, kGoodBody));
      if (request.target != kGoodTarget) return;
      is_idle->Pass();
      connection.Write(Response(200, "unasked"));
    };
    stage.before = [is_idle, port = stage.AddServer(handler).port()] {
      is_idle->Open();
      EXPECT_TRUE(WaitForBytes(port));
    };
  };
  return OnUsedConnection({"UnaskedBytes", set, Received(200, kGoodBody), EveryWay(), 1});
}

// Answers after the headers of an upload. The upload is larger than all buffers on the way, and its
// body is not read before the transfer has ended.
void AnswerEarly(int status, const std::string& body, Stage& stage) {
  auto turnstile = std::make_shared<Turnstile>();
  stage.after = [turnstile] { turnstile->Open(); };
  stage.AddServer(
      [status, body, turnstile](const RawRequest&, RawConnection& connection) {
        connection.Write(Response(status, body));
        turnstile->Pass();
        connection.Close();
      },
      kUnread);
}

Fault AnsweredEarly(const char* name, int status, const char* body) {
  Fault fault = {name, [status, body](Stage& stage) { AnswerEarly(status, body, stage); },
                 Received(status, body), Uploads()};
  fault.upload_size = kLargeBody;
  fault.runs = 5;
  return fault;
}

}  // namespace

std::vector<Fault> ConnectionFaults() {
  const auto set_closed = [](Stage& stage) {
    stage.url = stage.Keep(std::make_shared<ClosedPort>()).Url();
  };
  const auto set_full = [](Stage& stage) {
    stage.url = stage.Keep(std::make_shared<FullListener>()).Url();
  };
  return {{"Refused", set_closed, Failed(0, TransferError::kNotConnected), EveryWay()},
          Silent("NotAccepted", set_full, 0),
          Silent("NoAnswer", Serve(Silence()), 0),
          Stalls("StallInsideHeaders", kPartOfHead),
          Stalls("StallInsideBody", kPartOfBody),
          Reset("ResetBeforeHeaders", "", 0),
          Reset("ResetInsideHeaders", kPartOfHead, 200),
          Reset("ResetAfterHeaders", kHead, 200),
          Reset("ResetInsideBody", kPartOfBody, 200),
          OnUsedConnection(Silent("StallOnUsedConnection", Serve(Silence()), 0)),
          OnUsedConnection(Reset("ResetOnUsedConnection", kPartOfBody, 200)),
          OnUsedConnection({"CutOnUsedConnection", Serve(AlwaysThenClose(kPartOfBody)),
                            Failed(200, TransferError::kCutOff)}),
          HalfClosedBetween(),
          UnaskedBytes(),
          Drip(),
          DripInsideLine("DripInsideHeaderLine", "HTTP/1.1 200 OK\r\nX-Slow: "),
          DripInsideLine("DripInsideChunkSize",
                         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5;"),
          AnsweredEarly("TakenBeforeTheUpload", 200, "taken"),
          AnsweredEarly("RefusedBeforeTheUpload", 413, "too large")};
}

}  // namespace stowra_test
