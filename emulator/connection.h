// HTTP with one client.

#ifndef EMULATOR_CONNECTION_H_
#define EMULATOR_CONNECTION_H_

#include <httplib.h>

#include <cstdint>

#include "emulator/client_socket.h"
#include "emulator/dispatcher.h"
#include "emulator/engine_stream.h"
#include "emulator/fault.h"
#include "emulator/request_log.h"

namespace stowra_emulator {

// Serves the requests of one connection in turn, each with the fault that it asks for. The HTTP
// library is used as an engine that reads requests and writes responses; one engine a connection
// ties its callbacks to this connection's state. Handlers answer with a body: content providers
// would find the engine shut down, since it does not listen itself.
// For one thread; everything that the constructor is given must outlive it.
class Connection : private httplib::Server {
 public:
  Connection(FileDescriptor socket, const StopEvent& stop, Dispatcher& dispatcher, RequestLog& log,
             std::uint64_t max_body_size);

  // Returns when the client has left, a fault has ended the connection, or the stop event is set.
  void Serve();

 private:
  // One request and its response. True when the connection can serve another.
  bool ServeRequest(bool is_last);

  void PrepareRequest(httplib::Request& request);
  bool HasOversizedBody(const httplib::Request& request) const;
  void RefuseBody(httplib::Response& response) const;
  void Answer(const httplib::Request& request, httplib::Response& response);

  ClientSocket socket_;
  EngineStream stream_;
  Dispatcher& dispatcher_;
  RequestLog& log_;
  const std::uint64_t max_body_size_;

  // Of the request being served.
  Fault fault_;
  LogEntry log_entry_;
  bool request_was_read_ = false;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONNECTION_H_
