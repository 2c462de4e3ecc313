// HTTP with one client.

#ifndef EMULATOR_CONNECTION_H_
#define EMULATOR_CONNECTION_H_

#include <httplib.h>

#include <optional>

#include "emulator/client_socket.h"
#include "emulator/engine_stream.h"
#include "emulator/fault.h"
#include "emulator/server_state.h"

namespace stowra_emulator {

// Serves the requests of one connection in turn, each with its fault. The HTTP library reads the
// requests and writes the responses but does not listen. It calls back without naming the
// connection, so each connection has an engine of its own. Handlers must set a body: a content
// provider fails in an engine that does not listen.
// For one thread. The state must outlive this object.
class Connection : private httplib::Server {
 public:
  Connection(FileDescriptor socket, ServerState& state);

  // Returns when the connection has ended or the stop event is set.
  void Serve();

 private:
  // Serves one request. True if the connection can serve another.
  bool ServeRequest(bool is_last);

  void PrepareRequest(httplib::Request& request);
  bool HasOversizedBody(const httplib::Request& request) const;
  void RefuseBody(httplib::Response& response) const;
  void Answer(const httplib::Request& request, httplib::Response& response);

  // Empty if the request asks for an unknown one.
  std::optional<Fault> FaultFor(const httplib::Request& request);

  ServerState& state_;
  ClientSocket socket_;
  EngineStream stream_;

  // The state of the current request.
  Fault fault_;
  LogEntry log_entry_;
  bool request_was_read_ = false;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONNECTION_H_
