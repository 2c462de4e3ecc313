// SPDX-License-Identifier: MIT
#include <sstream>

#include "packaging/reference/formats.h"

namespace stowra_reference {

namespace {

std::string Quoted(const std::string& text) {
  return "'" + Replaced(Replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

// `begin` names the program and when the option counts.
void WriteArguments(std::ostream& script, const Command& command, const std::string& begin) {
  for (const Argument& option : command.options) {
    script << begin;
    for (const std::string& name : option.names) {
      script << (name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1));
    }
    if (!option.values.empty()) script << (option.TakesFile() ? " -r -F" : " -x");
    if (!option.choices.empty()) script << " -a " << Quoted(Joined(option.choices, " "));
    script << " -d " << Quoted(Summary(option.description)) << "\n";
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
    WriteArguments(script, program, complete);
    return script.str();
  }
  WriteArguments(script, program, complete + " -n __fish_use_subcommand");
  for (const Command& command : program.commands) {
    script << complete << " -n __fish_use_subcommand -a " << command.name << " -d "
           << Quoted(Summary(command.description)) << "\n";
  }
  for (const Command& command : program.commands) {
    WriteArguments(script, command,
                   complete + " -n '__fish_seen_subcommand_from " + command.name + "'");
  }
  return script.str();
}

}  // namespace stowra_reference
