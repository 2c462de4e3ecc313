// SPDX-License-Identifier: MIT
#include "emulator/http_date.h"

#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>

namespace stowra_emulator {

std::string HttpDate(const std::string& time) {
  std::tm parts = {};
  std::istringstream input(time);
  input.imbue(std::locale::classic());
  input >> std::get_time(&parts, "%Y-%m-%dT%H:%M:%SZ");
  if (input.fail()) return std::string();
  const std::time_t seconds = ::timegm(&parts);
  ::gmtime_r(&seconds, &parts);  // Finds the day of the week.
  std::ostringstream date;
  date.imbue(std::locale::classic());
  date << std::put_time(&parts, "%a, %d %b %Y %H:%M:%S GMT");
  return date.str();
}

}  // namespace stowra_emulator
