// SPDX-License-Identifier: MIT
// HTTP with one client.

#ifndef EMULATOR_CONNECTION_H_
#define EMULATOR_CONNECTION_H_

#include <httplib.h>

#include <chrono>
#include <optional>
#include <string>

#include "emulator/client_socket.h"
#include "emulator/delivery.h"
#include "emulator/engine_stream.h"
#include "emulator/exchange_source.h"
#include "emulator/fault.h"
#include "emulator/request_body.h"
#include "emulator/server_state.h"

namespace stowra_emulator {

// Serves the requests of one connection in turn, each with its fault. The HTTP library parses the
// requests and writes the responses but does not listen. It calls back without naming the
// connection, so each connection has an engine of its own.
// For one thread. The state must outlive this object.
class Connection : private httplib::Server {
 public:
  Connection(FileDescriptor socket, ServerState& state);

  // Returns when the connection has ended or the stop event is set.
  void Serve();

 private:
  void SetHandlers();

  // Serves one request. True if the connection can serve another.
  bool ServeRequest(bool is_last);

  // Reads the head and hands it to the engine. False if the client has left.
  bool ReadHead();

  void PrepareRequest(httplib::Request& request);
  std::uint64_t BodyLimit(const httplib::Request& request) const;
  bool HasOversizedBody(const httplib::Request& request) const;
  void RefuseBody(const httplib::Request& request, httplib::Response& response) const;

  // Called by the engine, in this order.
  HandlerResponse RefuseEarly(const httplib::Request& request, httplib::Response& response);
  void AnswerWithBody(const httplib::Request& request, const httplib::ContentReader& reader,
                      httplib::Response& response);
  void Answer(const httplib::Request& request, const RequestBody& body,
              httplib::Response& response);
  void BeginDelivery(const httplib::Request& request, const httplib::Response& response);

  void SendRawResponse();

  // True for the pages that show and set what the emulator does.
  bool IsConsole(const std::string& path) const;

  // Writes log and journal.
  void NoteRequest();

  // Empty if the request asks for an unknown one.
  std::optional<Fault> FaultFor(const httplib::Request& request);

  ServerState& state_;
  ClientSocket socket_;
  Delivery delivery_;
  EngineStream stream_;

  // The state of the current request.
  Fault fault_;
  LogEntry log_entry_;
  bool head_is_too_large_ = false;
  bool request_was_read_ = false;
  std::string head_;  // As the client sent it.
  std::chrono::steady_clock::time_point start_;
  std::string path_;
  std::string shown_body_;                    // The start of the response's body.
  std::optional<HttpResponse> raw_response_;  // Sent in place of the engine's.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONNECTION_H_
