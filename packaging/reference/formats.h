// SPDX-License-Identifier: MIT
// What is made of a program's commands and options.

#ifndef PACKAGING_REFERENCE_FORMATS_H_
#define PACKAGING_REFERENCE_FORMATS_H_

#include <string>

#include "packaging/reference/command.h"

namespace stowra_reference {

// A page in the man macros. `end` is in these macros too: the sections that no option tells.
std::string ManPage(const Command& program, const std::string& version, const std::string& date,
                    const std::string& end);

std::string BashCompletion(const Command& program);
std::string ZshCompletion(const Command& program);
std::string FishCompletion(const Command& program);

}  // namespace stowra_reference

#endif  // PACKAGING_REFERENCE_FORMATS_H_
