#include <iomanip>
#include <sstream>

#include "emulator/fault.h"
#include "emulator/route.h"
#include "emulator/services.h"

namespace stowra_emulator {

void AnswerIndex(const Call&, httplib::Response& response) {
  std::ostringstream page;
  page << std::left << "stowra-emulator: local services to develop and test against\n\nRoutes\n";
  for (const Route& route : Routes()) {
    page << "  " << std::setw(6) << route.method << std::setw(19) << route.path << route.description
         << '\n';
  }
  page << "\nFaults: add one to any address, as in /user-info?fault=status:503\n";
  for (const FaultDescription& fault : Faults()) {
    page << "  " << std::setw(20) << fault.usage << fault.description << '\n';
  }
  response.set_content(page.str(), "text/plain; charset=utf-8");
}

}  // namespace stowra_emulator
