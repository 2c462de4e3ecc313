// SPDX-License-Identifier: MIT
// What a handler works on.

#ifndef EMULATOR_CALL_H_
#define EMULATOR_CALL_H_

#include <httplib.h>

#include "emulator/console/journal.h"
#include "emulator/content/upload_store.h"
#include "emulator/database.h"
#include "emulator/exchange_source.h"
#include "emulator/fault_plan.h"
#include "emulator/request_body.h"

namespace stowra_emulator {

// One request, with what the services keep. All of it outlives the handler's call.
struct Call {
  const httplib::Request& request;  // Without a body.
  const RequestBody& body;
  Database& database;
  UploadStore& uploads;
  FaultPlan& faults;
  Journal& journal;
  const ExchangeSource* source;  // Null if the services answer.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CALL_H_
