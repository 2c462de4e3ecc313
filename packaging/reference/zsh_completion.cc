// SPDX-License-Identifier: MIT
#include <sstream>

#include "packaging/reference/formats.h"

namespace stowra_reference {

namespace {

// Text inside single quotes, with the characters escaped that mean something to _arguments.
std::string Escaped(std::string text) {
  text = Replaced(text, "\\", "\\\\");
  for (const char* mark : {":", "[", "]"}) text = Replaced(text, mark, std::string("\\") + mark);
  return Replaced(text, "'", "'\\''");
}

// ":FILE:_files" for each value.
std::string Values(const Argument& argument) {
  std::string text;
  for (const std::string& value : argument.values) {
    text += ":" + Escaped(value) + ":";
    if (!argument.choices.empty()) {
      text += "(" + Joined(argument.choices, " ") + ")";
    } else {
      text += argument.TakesFile() ? "_files" : "()";
    }
  }
  return text;
}

void WriteZshArguments(std::ostream& script, const Command& command, const std::string& indent) {
  for (const Argument& option : command.options) {
    const std::string others = option.repeatable ? "*" : "(" + Joined(option.names, " ") + ")";
    for (const std::string& name : option.names) {
      script << " \\\n"
             << indent << "'" << others << name << "[" << Escaped(Summary(option.description))
             << "]" << Values(option) << "'";
    }
  }
  for (const Argument& positional : command.positionals) {
    script << " \\\n"
           << indent << "'" << (positional.repeatable ? "*" : "") << Values(positional) << "'";
  }
  script << "\n";
}

void WriteCommands(std::ostream& script, const Command& program) {
  script << "  case $state in\n    command)\n      commands=(\n";
  for (const Command& command : program.commands) {
    script << "        '" << command.name << ":" << Escaped(Summary(command.description)) << "'\n";
  }
  script << "      )\n      _describe -t commands command commands ;;\n"
         << "    arguments)\n      case $words[1] in\n";
  for (const Command& command : program.commands) {
    script << "        " << command.name << ")\n          _arguments";
    WriteZshArguments(script, command, "            ");
    script << "          ;;\n";
  }
  script << "      esac ;;\n  esac\n";
}

}  // namespace

std::string ZshCompletion(const Command& program) {
  std::ostringstream script;
  script << "#compdef " << program.name << "\n# SPDX-License-Identifier: MIT\n\n_" << program.name
         << "() {\n";
  if (program.commands.empty()) {
    script << "  _arguments";
    WriteZshArguments(script, program, "    ");
  } else {
    script << "  local curcontext=$curcontext state line\n  local -a commands\n"
           << "  typeset -A opt_args\n"
           << "  _arguments -C '1: :->command' '*:: :->arguments'";
    WriteZshArguments(script, program, "    ");
    WriteCommands(script, program);
  }
  script << "}\n\n_" << program.name << " \"$@\"\n";
  return script.str();
}

}  // namespace stowra_reference
