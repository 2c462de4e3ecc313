// SPDX-License-Identifier: MIT
// Writes to stdout and stderr.

#ifndef HOST_TERMINAL_H_
#define HOST_TERMINAL_H_

#include <cstdio>
#include <string>

#include "host/exit_status.h"

namespace stowra {

// Whether a line on `stream` may be redrawn: it is a terminal, and not a dumb one.
bool MayRedraw(std::FILE* stream);

// Whether output to `stream` may be coloured: as MayRedraw, unless the environment variable
// NO_COLOR has a value.
bool MayColour(std::FILE* stream);

// Writes the result to stdout. On failure prints a message and returns kCannotRun.
ExitStatus WriteResult(const std::string& text);

// Each prints one line to stderr. Complain begins it with "stowra:", Warn with "stowra: warning:".
void Note(const std::string& message);
void Complain(const std::string& message);
void Warn(const std::string& message);

}  // namespace stowra

#endif  // HOST_TERMINAL_H_
