// SPDX-License-Identifier: MIT
#include <sstream>

#include "packaging/reference/formats.h"

namespace stowra_reference {

namespace {

std::string FishQuoted(const std::string& text) {
  return "'" + Replaced(Replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

// `begin` names the program and when the option counts.
void WriteFishArguments(std::ostream& script, const Command& command, const std::string& begin) {
  for (const Argument& option : command.options) {
    script << begin;
    for (const std::string& name : option.names) {
      script << (name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1));
    }
    if (!option.values.empty()) script << (option.TakesFile() ? " -r -F" : " -x");
    if (!option.choices.empty()) script << " -a " << FishQuoted(Joined(option.choices, " "));
    script << " -d " << FishQuoted(Summary(option.description)) << "\n";
  }
  for (const Argument& positional : command.positionals) {
    if (positional.TakesFile()) script << begin << " -F\n";
  }
}

}  // namespace

std::string FishCompletion(const Command& program) {
  std::ostringstream script;
  const std::string complete = "complete -c " + program.name;
  script << "# SPDX-License-Identifier: MIT\n# fish completion for " << program.name << "\n\n"
         << complete << " -f\n";
  if (program.commands.empty()) {
    WriteFishArguments(script, program, complete);
    return script.str();
  }
  WriteFishArguments(script, program, complete + " -n __fish_use_subcommand");
  for (const Command& command : program.commands) {
    script << complete << " -n __fish_use_subcommand -a " << command.name << " -d "
           << FishQuoted(Summary(command.description)) << "\n";
  }
  for (const Command& command : program.commands) {
    WriteFishArguments(script, command,
                       complete + " -n '__fish_seen_subcommand_from " + command.name + "'");
  }
  return script.str();
}

}  // namespace stowra_reference
