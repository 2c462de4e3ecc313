// SPDX-License-Identifier: MIT
// Shows the steps of transfers to a person.

#ifndef HOST_TRACE_PRINTER_H_
#define HOST_TRACE_PRINTER_H_

#include <string>
#include <vector>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

// The lines for one event, without line breaks. They may hold control characters from a server.
// With verbosity 1 there are lines for a request's head ("> "), a response's head ("< ") and the
// end
// ("* "). With 2 there is also a line for each other step ("* ") but kProgress.
std::vector<std::string> StepLines(const ovrant::internet::TransferEvent& event, int verbosity);

}  // namespace stowra

#endif  // HOST_TRACE_PRINTER_H_
