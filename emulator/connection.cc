// SPDX-License-Identifier: MIT
#include "emulator/connection.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include "emulator/capture.h"
#include "emulator/http_fields.h"
#include "emulator/json_reply.h"
#include "emulator/page/error_page.h"
#include "emulator/page/page.h"
#include "emulator/request_error.h"
#include "emulator/route.h"

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

std::uint64_t SizeOf(const httplib::Response& response) {
  return response.body.empty() ? response.content_length_ : response.body.size();
}

}  // namespace

Connection::Connection(FileDescriptor socket, ServerState& state)
    : state_(state),
      socket_(std::move(socket), state.stop, state.tls_context()),
      delivery_(socket_),
      stream_(socket_, delivery_) {
  // The engine calls content providers only if it believes that it listens.
  svr_sock_ = 0;
  set_default_headers({{"Accept-Ranges", "none"}, {"X-Content-Type-Options", "nosniff"}});
  // The engine only tells the client these limits. Serve enforces them.
  set_keep_alive_timeout(kIdleTimeout.count());
  set_keep_alive_max_count(kMaxRequests);
  SetHandlers();
}

void Connection::SetHandlers() {
  const Handler answer = [this](const httplib::Request& request, httplib::Response& response) {
    // The engine would take an unread body for the next request.
    request_was_read_ = !HasBody(request);
    Answer(request, RequestBody(), response);
  };
  const HandlerWithContentReader answer_with_body =
      [this](const httplib::Request& request, httplib::Response& response,
             const httplib::ContentReader& reader) { AnswerWithBody(request, reader, response); };
  const std::string every_path = R"([\s\S]*)";
  Get(every_path, answer);
  Options(every_path, answer);
  Post(every_path, answer_with_body);
  Put(every_path, answer_with_body);
  Patch(every_path, answer_with_body);
  Delete(every_path, answer_with_body);

  set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    return RefuseEarly(request, response);
  });
  // Runs for every error status. Without a body it is a refusal by the engine itself.
  set_error_handler(Handler([](const httplib::Request& request, httplib::Response& response) {
    if (response.body.empty()) SetError(response, response.status, "cannot serve this request");
    if (WantsPage(request)) MakeErrorPage(response);
  }));
  // Runs just before the engine writes a response.
  set_post_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    BeginDelivery(request, response);
  });
}

void Connection::Serve() {
  int served = 1;
  while (ServeRequest(served == kMaxRequests)) ++served;
  socket_.Finish();
}

bool Connection::ServeRequest(bool is_last) {
  if (!stream_.WaitForInput(kIdleTimeout)) return false;
  fault_ = Fault();
  log_entry_ = LogEntry();
  path_.clear();
  shown_body_.clear();
  start_ = std::chrono::steady_clock::now();
  request_was_read_ = false;
  raw_response_.reset();
  delivery_.Reset();
  stream_.DropOutput(false);
  if (!ReadHead()) return false;
  bool close_was_asked = false;
  const bool was_written =
      process_request(stream_, is_last, close_was_asked,
                      [this](httplib::Request& request) { PrepareRequest(request); });
  if (raw_response_) SendRawResponse();
  if (!delivery_.has_begun()) return false;
  NoteRequest();
  return was_written && delivery_.may_continue() && request_was_read_ && !close_was_asked &&
         !is_last;
}

bool Connection::ReadHead() {
  const EngineStream::HeadResult result = stream_.ReadHead(state_.limits, head_);
  if (result == EngineStream::HeadResult::kClosed) return false;
  std::string head = head_;
  head_is_too_large_ = result == EngineStream::HeadResult::kTooLarge;
  if (head_is_too_large_) {
    // The engine answers the request line alone.
    head.resize(head.find('\n') + 1);
    head += "Connection: close\r\n\r\n";
  } else if (result == EngineStream::HeadResult::kLongRequestLine) {
    head += "\r\n\r\n";
  }
  // The engine refuses ranges of units that it does not know, which a server must ignore.
  HideField(head, "Range");
  if (state_.source != nullptr) {
    // The engine would take the body apart.
    HideField(head, "Content-Type");
    HideField(head, "Content-Encoding");
  }
  stream_.SetHead(std::move(head));
  return true;
}

void Connection::PrepareRequest(httplib::Request& request) {
  // Without a length the engine would read the body until the client closes.
  if (!HasBody(request)) {
    request.headers.erase("Content-Length");
    request.set_header("Content-Length", "0");
  }
  request.ranges.clear();
  if (state_.tls) request.set_header("X-Forwarded-Proto", "https");
  stream_.LimitBody(BodyLimit(request));
  if (HasOversizedBody(request)) {
    // Nobody reads this body, so the client gets no "100 Continue".
    request.headers.erase("Expect");
    request.headers.erase("Connection");
    request.set_header("Connection", "close");
  }
}

std::uint64_t Connection::BodyLimit(const httplib::Request& request) const {
  const Route* route = FindRoute(request.method, request.path);
  const bool takes_files = route != nullptr && route->takes_files;
  return takes_files ? state_.limits.upload : state_.limits.body;
}

bool Connection::HasOversizedBody(const httplib::Request& request) const {
  return DeclaredSize(request) > BodyLimit(request);
}

void Connection::RefuseBody(const httplib::Request& request, httplib::Response& response) const {
  response.set_header("Connection", "close");
  SetError(response, 413,
           "a body of more than " + std::to_string(BodyLimit(request)) + " bytes is refused");
}

Connection::HandlerResponse Connection::RefuseEarly(const httplib::Request& request,
                                                    httplib::Response& response) {
  if (head_is_too_large_) {
    SetError(response, 431,
             "a header field of more than " + std::to_string(state_.limits.head_line) +
                 " bytes, or more than " + std::to_string(state_.limits.head) +
                 " bytes of header, is refused");
  } else if (HasOversizedBody(request)) {
    RefuseBody(request, response);
  } else {
    return HandlerResponse::Unhandled;
  }
  return HandlerResponse::Handled;
}

void Connection::AnswerWithBody(const httplib::Request& request,
                                const httplib::ContentReader& reader, httplib::Response& response) {
  RequestBody body;
  BodyResult result;
  try {
    result = ReadBody(request, reader, state_.limits, state_.dispatcher.spool_folder(), body);
  } catch (const std::exception& error) {
    SetError(response, 500, error.what());
    return;
  }
  if (result == BodyResult::kTooLarge || stream_.BodyIsTooLarge()) {
    RefuseBody(request, response);
  } else if (result == BodyResult::kMalformed) {
    SetError(response, 400, "the body is malformed or incomplete");
  } else {
    request_was_read_ = true;
    Answer(request, body, response);
  }
}

void Connection::Answer(const httplib::Request& request, const RequestBody& body,
                        httplib::Response& response) {
  try {
    const std::optional<Fault> fault = FaultFor(request);
    if (!fault) {
      SetError(response, 400, "unknown fault; the faults are: " + FaultUsages());
      return;
    }
    fault_ = *fault;
    if (AnswerInstead(fault_, request, response)) {
      Capture(response.body, shown_body_);
      return;
    }
    if (state_.source == nullptr || IsControlPath(request.path)) {
      state_.dispatcher.Answer(request, body, response);
      Capture(response.body, shown_body_);
    } else {
      raw_response_ =
          state_.source->Answer({request.method, request.target, ParseFields(head_), body.text});
      response.status = raw_response_->status;
      Capture(raw_response_->body, shown_body_);
    }
  } catch (const RequestError& error) {
    SetError(response, error.status, error.what());
  } catch (const std::exception& error) {
    SetError(response, 500, error.what());
  }
}

void Connection::BeginDelivery(const httplib::Request& request, const httplib::Response& response) {
  log_entry_ = {request.method, request.target, response.status, 0};
  path_ = request.path;
  if (raw_response_) {
    stream_.DropOutput(true);
  } else {
    delivery_.Begin(fault_, request.method == "HEAD" ? 0 : SizeOf(response));
  }
}

void Connection::NoteRequest() {
  log_entry_.body_bytes = delivery_.body_bytes();
  state_.log.Write(log_entry_);
  if (IsConsole(path_)) return;
  JournalEntry entry;
  entry.time = std::chrono::system_clock::now();
  entry.duration = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start_);
  entry.method = log_entry_.method;
  entry.target = log_entry_.target;
  entry.status = log_entry_.status;
  entry.fault = fault_.text;
  Capture(head_, entry.request_head);
  entry.request_body = stream_.body_start();
  Capture(delivery_.head(), entry.response_head);
  entry.response_body = shown_body_;
  entry.body_bytes = log_entry_.body_bytes;
  state_.journal.Add(std::move(entry));
}

void Connection::SendRawResponse() {
  if (!socket_.Pause(raw_response_->delay)) return;
  delivery_.Begin(fault_, raw_response_->body.size());
  if (delivery_.Write(raw_response_->Head())) delivery_.Write(raw_response_->body);
}

std::optional<Fault> Connection::FaultFor(const httplib::Request& request) {
  // With a recording, such a parameter belongs to the recorded service.
  if (state_.source == nullptr && request.has_param("fault")) {
    return ParseFault(request.get_param_value("fault"));
  }
  return IsConsole(request.path) ? Fault() : state_.faults.Draw(request.path);
}

bool Connection::IsConsole(const std::string& path) const {
  return IsControlPath(path) || (state_.source == nullptr && path == "/");
}

}  // namespace stowra_emulator
