// SPDX-License-Identifier: MIT
// A program's commands and options as plain texts, read from its CLI11 set-up.

#ifndef PACKAGING_REFERENCE_COMMAND_H_
#define PACKAGING_REFERENCE_COMMAND_H_

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace stowra_reference {

// An option, a flag or a positional argument.
struct Argument {
  std::vector<std::string> names;    // "-v", "--verbose"; empty for a positional argument
  std::vector<std::string> values;   // "FILE"; empty for a flag
  std::vector<std::string> choices;  // what the value may be; empty if that is open
  std::string description;
  std::string environment;  // the variable that it is read from; mostly empty
  bool required = false;
  bool repeatable = false;

  bool TakesFile() const;
};

struct Command {
  std::string name;
  std::string description;
  std::string examples;
  std::vector<Argument> positionals;
  std::vector<Argument> options;
  std::vector<Command> commands;
};

// Hidden options and commands (those of the group "") are left out.
Command ReadCommand(const CLI::App& app);

// The first sentence or clause of a description, for a list that shows one line each.
std::string Summary(const std::string& description);

// `text` with each `from` replaced by `to`.
std::string Replaced(std::string text, const std::string& from, const std::string& to);

std::string Joined(const std::vector<std::string>& texts, const std::string& separator);

}  // namespace stowra_reference

#endif  // PACKAGING_REFERENCE_COMMAND_H_
