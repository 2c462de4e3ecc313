// SPDX-License-Identifier: MIT
// Finds the handler for a request and runs it.

#ifndef EMULATOR_DISPATCHER_H_
#define EMULATOR_DISPATCHER_H_

#include <httplib.h>

#include <mutex>
#include <string>

#include "emulator/console/journal.h"
#include "emulator/content/upload_store.h"
#include "emulator/database.h"
#include "emulator/exchange_source.h"
#include "emulator/fault_plan.h"
#include "emulator/request_body.h"

namespace stowra_emulator {

// Owns the database and runs the handlers on it, one at a time. Safe from any thread.
class Dispatcher {
 public:
  // Throws DatabaseError, as Database does.
  // The faults, the journal and the source are for the handlers. They must outlive this object.
  Dispatcher(const std::string& database_file, FaultPlan& faults, Journal& journal,
             const ExchangeSource* source)
      : database_(database_file),
        uploads_(database_file),
        faults_(faults),
        journal_(journal),
        source_(source) {}

  // Answers with the route's handler. Sets an error if no route matches or the handler throws a
  // RequestError. Other exceptions of a handler pass through.
  void Answer(const httplib::Request& request, const RequestBody& body,
              httplib::Response& response);

  // Where to put the files of a request.
  std::string spool_folder() const { return uploads_.SpoolFolder(); }

 private:
  std::mutex mutex_;
  Database database_;
  UploadStore uploads_;
  FaultPlan& faults_;
  Journal& journal_;
  const ExchangeSource* const source_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_DISPATCHER_H_
