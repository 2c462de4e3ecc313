// What the program writes, and how.

#ifndef HOST_TERMINAL_H_
#define HOST_TERMINAL_H_

#include <cstdio>
#include <string>

#include "host/exit_status.h"

namespace stowra {

// `text` as well-formed UTF-8 on one line: control characters, which command a terminal, are
// replaced. Texts from a server or the command line go through here before they are shown.
std::string Printable(const std::string& text);

// Whether a line on `stream` may be written over: a terminal that is not dumb.
bool MayRedraw(std::FILE* stream);

// Whether what is written to `stream` may be coloured: the same, unless the environment's NO_COLOR
// has a value.
bool MayColour(std::FILE* stream);

// Writes the result to stdout. kCannotRun, after a message, when that fails.
ExitStatus WriteResult(const std::string& text);

// One line on stderr: the second with the program's name before it, the third with that and
// "warning".
void Note(const std::string& message);
void Complain(const std::string& message);
void Warn(const std::string& message);

}  // namespace stowra

#endif  // HOST_TERMINAL_H_
