#include "emulator/connection.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "emulator/delivery.h"
#include "emulator/json_reply.h"

namespace stowra_emulator {
namespace {

constexpr std::chrono::seconds kIdleTimeout(60);
constexpr int kMaxRequests = 1000;

std::uint64_t DeclaredSize(const httplib::Request& request) {
  return request.get_header_value<std::uint64_t>("Content-Length");
}

bool HasBody(const httplib::Request& request) {
  return request.has_header("Transfer-Encoding") || DeclaredSize(request) > 0;
}

// The methods whose body the engine reads.
bool MayHaveBody(const std::string& method) {
  return method == "POST" || method == "PUT" || method == "PATCH" || method == "DELETE";
}

}  // namespace

Connection::Connection(FileDescriptor socket, ServerState& state)
    : state_(state), socket_(std::move(socket), state.stop, state.tls_context()), stream_(socket_) {
  // The engine only tells the client these limits. Serve enforces them.
  set_keep_alive_timeout(kIdleTimeout.count());
  set_keep_alive_max_count(kMaxRequests);
  set_default_headers({{"Accept-Ranges", "none"}});

  const Handler answer = [this](const httplib::Request& request, httplib::Response& response) {
    Answer(request, response);
  };
  const std::string every_path = R"([\s\S]*)";
  Get(every_path, answer);
  Post(every_path, answer);
  Put(every_path, answer);
  Patch(every_path, answer);
  Delete(every_path, answer);
  Options(every_path, answer);

  // Runs before the engine reads the body.
  set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    if (!HasOversizedBody(request)) return HandlerResponse::Unhandled;
    RefuseBody(response);
    return HandlerResponse::Handled;
  });
  // Runs for every error status. Without a body it is a refusal by the engine itself.
  set_error_handler(Handler([this](const httplib::Request&, httplib::Response& response) {
    if (stream_.WantsMoreInput()) {
      RefuseBody(response);
    } else if (response.body.empty()) {
      SetError(response, response.status, "cannot serve this request");
    }
  }));
  set_logger([this](const httplib::Request& request, const httplib::Response& response) {
    log_entry_ = {request.method, request.target, response.status, 0};
  });
}

void Connection::Serve() {
  int served = 1;
  while (ServeRequest(served == kMaxRequests)) ++served;
  socket_.Finish();
}

bool Connection::ServeRequest(bool is_last) {
  if (!stream_.WaitForInput(kIdleTimeout)) return false;
  stream_.AllowInput(std::numeric_limits<std::uint64_t>::max());
  fault_ = Fault();
  request_was_read_ = false;
  bool close_was_asked = false;
  process_request(stream_, is_last, close_was_asked,
                  [this](httplib::Request& request) { PrepareRequest(request); });
  const std::string response = stream_.TakeResponse();
  if (response.empty()) return false;

  const Delivery delivery = Deliver(response, fault_, socket_);
  log_entry_.body_bytes = delivery.body_bytes;
  state_.log.Write(log_entry_);
  return delivery.may_continue && request_was_read_ && !close_was_asked && !is_last;
}

void Connection::PrepareRequest(httplib::Request& request) {
  // Without a length the engine would read the body until the client closes.
  if (!HasBody(request)) {
    request.headers.erase("Content-Length");
    request.set_header("Content-Length", "0");
  }
  request.ranges.clear();
  if (state_.tls) request.set_header("X-Forwarded-Proto", "https");
  stream_.AllowInput(state_.max_body_size);
  if (HasOversizedBody(request)) {
    // Nobody reads this body, so the client gets no "100 Continue".
    request.headers.erase("Expect");
    request.headers.erase("Connection");
    request.set_header("Connection", "close");
  }
}

bool Connection::HasOversizedBody(const httplib::Request& request) const {
  return DeclaredSize(request) > state_.max_body_size;
}

void Connection::RefuseBody(httplib::Response& response) const {
  SetError(response, 413,
           "a body of more than " + std::to_string(state_.max_body_size) + " bytes is refused");
}

void Connection::Answer(const httplib::Request& request, httplib::Response& response) {
  // The engine would take an unread body for the next request.
  request_was_read_ = MayHaveBody(request.method) || !HasBody(request);
  try {
    const std::optional<Fault> fault = FaultFor(request);
    if (!fault) {
      SetError(response, 400, "unknown fault; the faults are: " + FaultUsages());
      return;
    }
    fault_ = *fault;
    if (!AnswerInstead(fault_, request, response)) state_.dispatcher.Answer(request, response);
  } catch (const std::exception& error) {
    SetError(response, 500, error.what());
  }
}

std::optional<Fault> Connection::FaultFor(const httplib::Request& request) {
  if (request.has_param("fault")) return ParseFault(request.get_param_value("fault"));
  return state_.faults.Draw(request.path);
}

}  // namespace stowra_emulator
